#pragma once

#include "OssGuiExport.h"

#include <QDialog>
#include <QPoint>
#include <QSize>
#include <QStringList>

class QLineEdit;
class QListWidget;

// Quick node creation at the cursor: recent and favourite node types first, then every
// creatable type, filtered as the user types; Return takes the first match.
class OSSGUI_EXPORT OssNodeQuickFindDialog : public QDialog
{
    Q_OBJECT
public:
    OssNodeQuickFindDialog(const QStringList &lastUsed, const QStringList &favourites,
                           int recentCount, const QPoint &cursor, const QSize &viewSize,
                           QWidget *parent = nullptr);
    // The path keys shown now, in order.
    QStringList shownPathKeys() const;
    void setFilter(const QString &text);
    QString chosenPathKey() const { return m_chosen; }
    QStringList favourites() const { return m_favourites; }
    void toggleFavourite(const QString &pathKey);
    // Where the node goes, in view coordinates (the cursor the dialog was opened at).
    QPoint nodePosition() const { return m_cursor; }

public slots:
    void acceptCurrent();

private:
    void rebuild();
    QStringList m_lastUsed;
    QStringList m_favourites;
    QStringList m_all;
    QString m_chosen;
    QPoint m_cursor;
    QLineEdit *m_filter = nullptr;
    QListWidget *m_list = nullptr;
};
