#pragma once

#include <QDialog>
#include <QHash>
#include <QKeySequence>
#include <QList>
#include <QStringList>

class QKeySequenceEdit;
class QLineEdit;
class QPushButton;
class QTableWidget;

// The shell's keyboard shortcuts: a searchable table of the action tree's actions with the key
// in force and the default key, the rows whose keys collide highlighted. Edits stay in the
// dialog until Apply or OK writes them to the user's settings; Cancel writes nothing.
class OssShortcutEditor : public QDialog
{
    Q_OBJECT
public:
    enum Column
    {
        ActionColumn = 0,
        KeyColumn = 1,
        DefaultColumn = 2
    };

    explicit OssShortcutEditor(QWidget *parent = nullptr);

    QTableWidget *table() const { return m_table; }
    QLineEdit *filterEdit() const { return m_filter; }
    // The identities of the rows the filter leaves visible, in table order.
    QStringList visibleIdentities() const;
    int rowOf(const QString &identity) const;
    QList<QKeySequence> keys(const QString &identity) const;
    // The other identities sharing a key with Identity in the edited bindings.
    QStringList conflictsOf(const QString &identity) const;

public slots:
    void setKeys(const QString &identity, const QList<QKeySequence> &keys);
    void resetKeys(const QString &identity);
    void resetAll();
    // Shows the rows whose action path or key text contains Text (case-insensitive).
    void setFilter(const QString &text);
    // Writes the edited bindings: a binding equal to the defaults is stored as no binding.
    void apply();

signals:
    // The bindings were written; the shell binds its actions again.
    void applied();

private:
    struct Row
    {
        QString identity;
        QList<QKeySequence> defaults;
        QList<QKeySequence> keys;
    };
    QString currentIdentity() const;
    void refreshRow(int row);
    void refreshConflicts();
    void showCurrent();

    QLineEdit *m_filter = nullptr;
    QTableWidget *m_table = nullptr;
    QKeySequenceEdit *m_keyEdit = nullptr;
    QPushButton *m_clear = nullptr;
    QPushButton *m_reset = nullptr;
    QList<Row> m_rows;
    QHash<QString, int> m_rowByIdentity;
    QHash<QString, QStringList> m_conflicts;
};
