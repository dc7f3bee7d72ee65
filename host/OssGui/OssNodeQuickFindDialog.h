#pragma once

#include "OssGuiExport.h"
#include "OssNodeTypeMatcher.h"

#include <QDialog>
#include <QHash>
#include <QPoint>
#include <QSize>
#include <QStringList>

class QLabel;
class QLineEdit;
class QListWidget;

// Quick node creation at the cursor. Typing ranks the creatable node types as it goes (letters
// in order in the type's name or menu path, word starts first, then recent and favourite types,
// then the most used); with nothing typed the recent types come first, then the favourites, then
// every type. The keyboard does it all: Up, Down, Page Up and Page Down choose, Return creates,
// Shift+Return creates in the stream of the selected node, Ctrl+F marks or unmarks a favourite,
// Escape closes.
class OSSGUI_EXPORT OssNodeQuickFindDialog : public QDialog
{
    Q_OBJECT
public:
    // LastUsed is cut to RecentCount entries.
    OssNodeQuickFindDialog(const QStringList &lastUsed, const QStringList &favourites,
                           int recentCount, const QPoint &cursor, const QSize &viewSize,
                           QWidget *parent = nullptr);
    // How often each type was created, for the order among equal matches.
    void setUseCounts(const QHash<QString, int> &useCounts);
    // The path keys shown now, in order.
    QStringList shownPathKeys() const;
    // The path key of the highlighted row, or "".
    QString currentPathKey() const;
    void setFilter(const QString &text);
    QString filter() const;
    QString chosenPathKey() const { return m_chosen; }
    // True when the choice was made with Shift+Return: the node goes after the selected node.
    bool insertAfterSelection() const { return m_insertAfterSelection; }
    QStringList favourites() const { return m_favourites; }
    void toggleFavourite(const QString &pathKey);
    // Where the node goes, in view coordinates (the cursor the dialog was opened at).
    QPoint nodePosition() const { return m_cursor; }

public slots:
    void acceptCurrent();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void rebuild();
    void updateHistory();
    void moveCurrent(int rows);
    OssNodeTypeMatcher m_matcher;
    QStringList m_lastUsed;
    QStringList m_favourites;
    QHash<QString, int> m_useCounts;
    QString m_chosen;
    bool m_insertAfterSelection = false;
    QPoint m_cursor;
    QLineEdit *m_filter = nullptr;
    QListWidget *m_list = nullptr;
    QLabel *m_hint = nullptr;
};
