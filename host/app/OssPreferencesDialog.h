#pragma once

#include <OssPreferenceManager.h>

#include <QDialog>
#include <QList>

class QListWidget;
class QStackedWidget;
class QWidget;

// The host's preferences: one page per preference page, a group box per group, one editor
// per preference chosen from its kind. Apply and OK write the edited values through the
// preference objects and save them; Cancel writes nothing.
class OssPreferencesDialog : public QDialog
{
    Q_OBJECT
public:
    explicit OssPreferencesDialog(QWidget *parent = nullptr);

    // The editor widget made for a preference (for tests), or null.
    QWidget *editorFor(const QString &page, const QString &key) const;
    QStringList pageNames() const;

public slots:
    void apply();
    // Shows the default of every preference of the current page in its editor; Apply or OK
    // writes them.
    void restoreDefaults();
    // Reads the current values into the editors.
    void refresh();

private:
    struct Row
    {
        OssPreference preference;
        QWidget *editor = nullptr;
    };
    QWidget *makeEditor(const OssPreference &preference);
    static QVariant editorValue(const Row &row);
    static void setEditorValue(const Row &row, const QVariant &value);

    QListWidget *m_pages = nullptr;
    QStackedWidget *m_stack = nullptr;
    QList<Row> m_rows;
};
