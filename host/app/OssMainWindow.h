#pragma once

#include <QHash>
#include <QMainWindow>
#include <QPointer>

class OssPalette;
class OssPluginHost;
class QCloseEvent;
class QResizeEvent;
class QShowEvent;
class QDockWidget;
class QMenu;
class QTimer;

// The shell's main window: palettes as docks, File/Edit/Window/Help menus, one menu per
// top-level action-tree folder, and the project commands.
class OssMainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit OssMainWindow(OssPluginHost *plugins = nullptr, QWidget *parent = nullptr);
    ~OssMainWindow() override;

    // The menu title and submenu path an action-tree folder is shown under:
    // "/Ossa/NodeGraph/Create/Filter" gives ("Node Graph", "Create", "Filter"). Empty parts and
    // a leading "Ossa" are dropped; the first remaining part is split at its capitals.
    static QStringList menuPathForFolder(const QString &folder);

    QDockWidget *dockFor(const OssPalette *palette) const;
    QMenu *windowMenu() const { return m_windowMenu; }
    // The Project menu: the project's shading groups, the current one checked.
    QMenu *projectMenu() const { return m_projectMenu; }
    // The menu for a top-level title, or null.
    QMenu *topMenu(const QString &title) const;
    // The text of the About box.
    QString aboutText() const;

    // Asks whether to save unsaved edits: true when the caller may go on (saved, discarded, or
    // nothing to save), false when the user cancelled or the save failed.
    bool maybeSave();

public slots:
    // New and open ask first whether to save unsaved edits, and do nothing when cancelled.
    void newProject();
    bool openProject(const QString &path);
    void openProjectDialog();
    bool saveProject();
    bool saveProjectAs(const QString &path);
    void saveProjectAsDialog();
    void showPreferences();
    // The keyboard shortcut editor; what it applies binds the actions again.
    void showShortcutEditor();
    void showAbout();
    // Rebuilds the action-tree menus (deferred: actions arrive in bursts).
    void scheduleMenuRebuild();
    void rebuildActionMenus();
    // Gives the node graph's actions their keys: the user's bindings over the default keymap.
    void applyDefaultShortcuts();

    // Gives the node graph (the first palette) about three quarters of the width, the panels on
    // the right the rest; called again after the window changes size programmatically.
    void arrangeDocks();
    // Makes a shading group's network the current one (the node graph follows); false when the
    // open project has no shading group of that name.
    bool showShadingGroup(const QString &name);

protected:
    // Closing the window asks whether to save unsaved edits; Cancel keeps it open.
    void closeEvent(QCloseEvent *event) override;
    // A wider or narrower window widens or narrows the node graph; the panels keep their width.
    void resizeEvent(QResizeEvent *event) override;
    // Shown the first time, the window arranges its docks once they are laid out.
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void addPalette(OssPalette *palette);
    void fillProjectMenu();
    QDockWidget *sideDock() const;
    // "Ossa - <file name or project name>[*]", the mark shown while the history is not clean.
    void updateTitle();
    bool load(const QString &path);
    // The project file the user picks in a file dialog (or a queued answer); empty when none.
    QString chooseProjectFile(bool save);
    // A modal dialog leaves the window without keyboard focus: it gets it back, so that
    // shortcuts work without a click.
    void takeBackFocus();
    void reportError(const QString &title, const QString &message);

    OssPluginHost *m_plugins = nullptr;
    QMenu *m_windowMenu = nullptr;
    QMenu *m_projectMenu = nullptr;
    QMenu *m_helpMenu = nullptr;
    QList<QMenu *> m_actionMenus;
    QHash<const OssPalette *, QPointer<QDockWidget>> m_docks;
    QPointer<QDockWidget> m_mainDock;
    bool m_graphClosed = false;
    bool m_shown = false;
    // The panels' width to keep, and the window width the docks were last laid out for.
    int m_panelWidth = -1;
    int m_layoutWidth = -1;
    QTimer *m_menuTimer = nullptr;
};
