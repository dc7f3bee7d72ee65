#include "OssNodeInfoDialog.h"

#include <OssSnBaseNode.h>

#include <QDialogButtonBox>
#include <QPlainTextEdit>
#include <QVBoxLayout>

OssNodeInfoDialog::OssNodeInfoDialog(const QList<OssSnBaseNode *> &nodes, QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Info Viewer"));
    QStringList parts;
    for (OssSnBaseNode *node : nodes)
        if (node)
            parts.append(node->dumpNodeInfo());
    m_text = new QPlainTextEdit(this);
    m_text->setReadOnly(true);
    m_text->setPlainText(parts.join(QStringLiteral("\n\n")));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_text);
    layout->addWidget(buttons);
    resize(560, 420);
}

QString OssNodeInfoDialog::text() const
{
    return m_text->toPlainText();
}
