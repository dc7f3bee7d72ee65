#include "OssNodeQuickFindDialog.h"

#include <OssShaderNetworkManager.h>

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

// Types whose path key starts with "_" are the host's own and never offered.
bool hiddenKey(const QString &key)
{
    return key.startsWith(QLatin1Char('_'));
}

constexpr int PageRows = 8;

} // namespace

OssNodeQuickFindDialog::OssNodeQuickFindDialog(const QStringList &lastUsed,
                                               const QStringList &favourites, int recentCount,
                                               const QPoint &cursor, const QSize &viewSize,
                                               QWidget *parent)
    : QDialog(parent), m_lastUsed(lastUsed.mid(0, qMax(0, recentCount))), m_favourites(favourites),
      m_cursor(cursor)
{
    setWindowTitle(tr("Create Node"));
    OssShaderNetworkManager *manager = OssShaderNetworkManager::instance();
    QStringList keys;
    QStringList menuPaths;
    for (const QString &key : manager->nodeGraphPathKeys())
        if (!hiddenKey(key)) {
            keys.append(key);
            menuPaths.append(manager->nodeMenuPath(key));
        }
    m_matcher.setEntries(keys, menuPaths);
    m_lastUsed.erase(std::remove_if(m_lastUsed.begin(), m_lastUsed.end(),
                                    [&keys](const QString &key) { return !keys.contains(key); }),
                     m_lastUsed.end());

    m_filter = new QLineEdit(this);
    m_filter->setPlaceholderText(tr("Type to find a node type"));
    m_filter->installEventFilter(this);
    m_list = new QListWidget(this);
    m_list->setFocusPolicy(Qt::NoFocus);
    m_hint = new QLabel(tr("Return: create    Shift+Return: create after the selected node    "
                           "Ctrl+F: favourite"),
                        this);
    m_hint->setWordWrap(true);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_filter);
    layout->addWidget(m_list);
    layout->addWidget(m_hint);
    connect(m_filter, &QLineEdit::textChanged, this, &OssNodeQuickFindDialog::rebuild);
    connect(m_list, &QListWidget::itemActivated, this, &OssNodeQuickFindDialog::acceptCurrent);
    resize(340, 380);
    // Opened at the cursor, kept inside the view.
    move(QPoint(qBound(0, cursor.x(), qMax(0, viewSize.width() - width())),
                qBound(0, cursor.y(), qMax(0, viewSize.height() - height()))));
    updateHistory();
    m_filter->setFocus();
}

void OssNodeQuickFindDialog::setUseCounts(const QHash<QString, int> &useCounts)
{
    m_useCounts = useCounts;
    updateHistory();
}

void OssNodeQuickFindDialog::updateHistory()
{
    m_matcher.setHistory(m_lastUsed, m_favourites, m_useCounts);
    rebuild();
}

void OssNodeQuickFindDialog::rebuild()
{
    const QStringList keys = m_matcher.rank(m_filter->text());
    OssShaderNetworkManager *manager = OssShaderNetworkManager::instance();
    m_list->setUpdatesEnabled(false);
    m_list->clear();
    for (const QString &key : keys) {
        const QString menuPath = manager->nodeMenuPath(key);
        const QString name = OssNodeTypeMatcher::displayName(menuPath.isEmpty() ? key : menuPath);
        const QString folder = menuPath.section(QLatin1Char('/'), 0, -2);
        QString text = name;
        if (!folder.isEmpty())
            text += QStringLiteral("   ") + folder;
        if (m_favourites.contains(key))
            text += QStringLiteral("  *");
        auto *item = new QListWidgetItem(text, m_list);
        item->setData(Qt::UserRole, key);
        item->setToolTip(menuPath);
    }
    if (m_list->count() > 0)
        m_list->setCurrentRow(0);
    m_list->setUpdatesEnabled(true);
}

QStringList OssNodeQuickFindDialog::shownPathKeys() const
{
    QStringList keys;
    keys.reserve(m_list->count());
    for (int i = 0; i < m_list->count(); ++i)
        keys.append(m_list->item(i)->data(Qt::UserRole).toString());
    return keys;
}

QString OssNodeQuickFindDialog::currentPathKey() const
{
    const QListWidgetItem *item = m_list->currentItem();
    return item ? item->data(Qt::UserRole).toString() : QString();
}

void OssNodeQuickFindDialog::setFilter(const QString &text)
{
    m_filter->setText(text);
}

QString OssNodeQuickFindDialog::filter() const
{
    return m_filter->text();
}

void OssNodeQuickFindDialog::toggleFavourite(const QString &pathKey)
{
    if (pathKey.isEmpty())
        return;
    if (!m_favourites.removeOne(pathKey))
        m_favourites.append(pathKey);
    const QString current = currentPathKey();
    updateHistory();
    // The highlighted type stays highlighted though it moved.
    for (int i = 0; i < m_list->count(); ++i)
        if (m_list->item(i)->data(Qt::UserRole).toString() == current)
            m_list->setCurrentRow(i);
}

void OssNodeQuickFindDialog::moveCurrent(int rows)
{
    if (m_list->count() == 0)
        return;
    const int row = qBound(0, m_list->currentRow() + rows, m_list->count() - 1);
    m_list->setCurrentRow(row);
    m_list->scrollToItem(m_list->currentItem());
}

void OssNodeQuickFindDialog::acceptCurrent()
{
    const QString key = currentPathKey();
    if (key.isEmpty())
        return;
    m_chosen = key;
    accept();
}

bool OssNodeQuickFindDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_filter || event->type() != QEvent::KeyPress)
        return QDialog::eventFilter(watched, event);
    auto *key = static_cast<QKeyEvent *>(event);
    switch (key->key()) {
    case Qt::Key_Up:
        moveCurrent(-1);
        return true;
    case Qt::Key_Down:
        moveCurrent(1);
        return true;
    case Qt::Key_PageUp:
        moveCurrent(-PageRows);
        return true;
    case Qt::Key_PageDown:
        moveCurrent(PageRows);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        m_insertAfterSelection = key->modifiers().testFlag(Qt::ShiftModifier);
        acceptCurrent();
        return true;
    case Qt::Key_F:
        if (key->modifiers().testFlag(Qt::ControlModifier)) {
            toggleFavourite(currentPathKey());
            return true;
        }
        break;
    default:
        break;
    }
    return QDialog::eventFilter(watched, event);
}
