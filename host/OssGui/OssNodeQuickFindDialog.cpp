#include "OssNodeQuickFindDialog.h"

#include <OssShaderNetworkManager.h>

#include <QLineEdit>
#include <QListWidget>
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
