#pragma once

#include "OssGuiExport.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QWidget>

// A palette: a named panel of the application (shown by the shell as a dock) around one body
// widget. Its object name is the name it is found by.
class OSSGUI_EXPORT OssPalette : public QWidget
{
    Q_OBJECT
public:
    explicit OssPalette(QWidget *parent = nullptr);

    // Puts Body into the palette, replacing (and deleting) the previous body.
    void setBodyWidget(QWidget *body);
    QWidget *originalWidget() const { return m_body; }

    void setContextHelpKey(const QString &key) { m_contextHelpKey = key; }
    QString contextHelpKey() const { return m_contextHelpKey; }

public slots:
    // Asks the application's side bar (the shell's dock) to show the palette.
    void showBySidebar();

signals:
    void showRequested();

private:
    QPointer<QWidget> m_body;
    QString m_contextHelpKey;
};

// Registry of the application's palettes by name.
class OSSGUI_EXPORT OssPaletteManager : public QObject
{
    Q_OBJECT
public:
    // Flags of registration and look-up.
    enum Flag
    {
        NoFlags = 0,
        // find(): only palettes that are visible.
        VisibleOnly = 0x1,
        // registerPalette(): the shell shows the palette at once.
        ShowOnRegistration = 0x2,
    };

    static OssPaletteManager *instance();

    // False when Palette is null or a palette of the same name is registered already.
    bool registerPalette(OssPalette *palette, int flags = NoFlags, const QString &iconPath = {});
    OssPalette *find(const QString &name, int flags = NoFlags) const;
    QList<OssPalette *> palettes() const;
    QString iconPath(const OssPalette *palette) const;
    int flags(const OssPalette *palette) const;

signals:
    void paletteRegistered(OssPalette *palette);

private:
    explicit OssPaletteManager(QObject *parent = nullptr);

    struct Entry
    {
        QPointer<OssPalette> palette;
        int flags = NoFlags;
        QString iconPath;
    };
    QList<Entry> m_entries;
};
