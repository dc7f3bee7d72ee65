#include "OssSearchNodeDialog.h"

#include <OssSnBaseNode.h>

#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>

OssSearchNodeDialog::OssSearchNodeDialog(const QList<OssSnBaseNode *> &nodes, QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Search Node"));
    for (OssSnBaseNode *node : nodes)
        m_nodes.append(node);
    m_filter = new QLineEdit(this);
    m_list = new QListWidget(this);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_filter);
    layout->addWidget(m_list);
    connect(m_filter, &QLineEdit::textChanged, this, &OssSearchNodeDialog::rebuild);
    connect(m_filter, &QLineEdit::returnPressed, this, &OssSearchNodeDialog::acceptCurrent);
    connect(m_list, &QListWidget::itemActivated, this, &OssSearchNodeDialog::acceptCurrent);
    rebuild();
}

void OssSearchNodeDialog::rebuild()
{
    m_list->clear();
    const QString filter = m_filter->text().trimmed();
    QList<OssSnBaseNode *> shown;
    for (const QPointer<OssSnBaseNode> &node : qAsConst(m_nodes))
        if (node && (filter.isEmpty() || node->name().contains(filter, Qt::CaseInsensitive)))
            shown.append(node);
    std::sort(shown.begin(), shown.end(),
              [](OssSnBaseNode *a, OssSnBaseNode *b) { return a->name() < b->name(); });
    for (OssSnBaseNode *node : qAsConst(shown)) {
        auto *item = new QListWidgetItem(node->name(), m_list);
        item->setData(Qt::UserRole, QVariant::fromValue(static_cast<QObject *>(node)));
    }
    if (m_list->count() > 0)
        m_list->setCurrentRow(0);
}

void OssSearchNodeDialog::setFilter(const QString &text)
{
    m_filter->setText(text);
}

QStringList OssSearchNodeDialog::shownNames() const
{
    QStringList names;
    for (int i = 0; i < m_list->count(); ++i)
        names.append(m_list->item(i)->text());
    return names;
}

void OssSearchNodeDialog::acceptCurrent()
{
    QListWidgetItem *item = m_list->currentItem();
    if (!item)
        return;
    m_chosen = qobject_cast<OssSnBaseNode *>(item->data(Qt::UserRole).value<QObject *>());
    accept();
}

OssSnBaseNode *OssSearchNodeDialog::chosenNode() const
{
    return m_chosen;
}
