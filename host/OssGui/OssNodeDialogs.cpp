#include "OssNodeDialogs.h"

#include <OssShaderNetworkManager.h>
#include <OssSnBaseNode.h>

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace {

bool hiddenKey(const QString &key)
{
    return key.startsWith(QLatin1Char('_'));
}

} // namespace

OssNodeQuickFindDialog::OssNodeQuickFindDialog(const QStringList &lastUsed,
                                               const QStringList &favourites, int recentCount,
                                               const QPoint &cursor, const QSize &viewSize,
                                               QWidget *parent)
    : QDialog(parent), m_lastUsed(lastUsed.mid(0, qMax(0, recentCount))), m_favourites(favourites),
      m_cursor(cursor)
{
    setWindowTitle(tr("Create Node"));
    for (const QString &key : OssShaderNetworkManager::instance()->nodeGraphPathKeys())
        if (!hiddenKey(key))
            m_all.append(key);
    std::sort(m_all.begin(), m_all.end());
    m_filter = new QLineEdit(this);
    m_filter->setPlaceholderText(tr("Type to filter"));
    m_list = new QListWidget(this);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_filter);
    layout->addWidget(m_list);
    connect(m_filter, &QLineEdit::textChanged, this, &OssNodeQuickFindDialog::rebuild);
    connect(m_filter, &QLineEdit::returnPressed, this, &OssNodeQuickFindDialog::acceptCurrent);
    connect(m_list, &QListWidget::itemActivated, this, &OssNodeQuickFindDialog::acceptCurrent);
    resize(320, 360);
    // Opened at the cursor, kept inside the view.
    move(QPoint(qBound(0, cursor.x(), qMax(0, viewSize.width() - width())),
                qBound(0, cursor.y(), qMax(0, viewSize.height() - height()))));
    rebuild();
}

void OssNodeQuickFindDialog::rebuild()
{
    const QString filter = m_filter->text().trimmed();
    const auto matches = [&filter](const QString &key) {
        return filter.isEmpty() || key.contains(filter, Qt::CaseInsensitive);
    };
    m_list->clear();
    QStringList shown;
    for (const QStringList *section : {&m_lastUsed, &m_favourites, &m_all})
        for (const QString &key : *section)
            if (matches(key) && !shown.contains(key) && !hiddenKey(key))
                shown.append(key);
    for (const QString &key : qAsConst(shown)) {
        auto *item = new QListWidgetItem(key, m_list);
        if (m_favourites.contains(key))
            item->setText(key + QStringLiteral("  *"));
        item->setData(Qt::UserRole, key);
    }
    if (m_list->count() > 0)
        m_list->setCurrentRow(0);
}

QStringList OssNodeQuickFindDialog::shownPathKeys() const
{
    QStringList keys;
    for (int i = 0; i < m_list->count(); ++i)
        keys.append(m_list->item(i)->data(Qt::UserRole).toString());
    return keys;
}

void OssNodeQuickFindDialog::setFilter(const QString &text)
{
    m_filter->setText(text);
}

void OssNodeQuickFindDialog::toggleFavourite(const QString &pathKey)
{
    if (!m_favourites.removeOne(pathKey))
        m_favourites.append(pathKey);
    rebuild();
}

void OssNodeQuickFindDialog::acceptCurrent()
{
    QListWidgetItem *item = m_list->currentItem();
    if (!item)
        return;
    m_chosen = item->data(Qt::UserRole).toString();
    accept();
}

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
