#include "OssMainWindow.h"

#include "OssPluginHost.h"
#include "OssPreferencesDialog.h"
#include "OssShortcutEditor.h"
#include "OssShortcutMap.h"

#include <OssActionTreeManager.h>
#include <OssApplication.h>
#include <OssDebug.h>
#include <OssGroupParameterObject.h>
#include <OssGuiApplication.h>
#include <OssMessageBox.h>
#include <OssPalette.h>
#include <OssProject.h>
#include <OssProjectManager.h>
#include <OssResourceInfo.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssShadingGroup.h>
#include <OssStatusManager.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QActionGroup>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QMessageBox>
#include <QResizeEvent>
#include <QStatusBar>
#include <QTimer>

OssMainWindow::OssMainWindow(OssPluginHost *plugins, QWidget *parent)
    : QMainWindow(parent), m_plugins(plugins)
{
    setObjectName(QStringLiteral("OssMainWindow"));
    resize(1600, 1000);
    setDockNestingEnabled(true);
    OssGuiApplication::setMainWindow(this);
    // Short notes from the host's operations (a clamped value, a refused entry) show for a while.
    connect(OssStatusManager::instance(), &OssStatusManager::messageShown, statusBar(),
            [this](const QString &message) { statusBar()->showMessage(message, 8000); });

    QMenu *file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("&New Project"), this, &OssMainWindow::newProject, QKeySequence::New);
    file->addAction(tr("&Open Project..."), this, &OssMainWindow::openProjectDialog,
                    QKeySequence::Open);
    file->addAction(tr("&Save Project"), this, &OssMainWindow::saveProject, QKeySequence::Save);
    file->addAction(tr("Save Project &As..."), this, &OssMainWindow::saveProjectAsDialog,
                    QKeySequence::SaveAs);
    file->addSeparator();
    file->addAction(tr("&Quit"), this, &QWidget::close, QKeySequence::Quit);

    QMenu *edit = menuBar()->addMenu(tr("&Edit"));
    QAction *undo = new QAction(this);
    undo->setShortcut(QKeySequence::Undo);
    QAction *redo = new QAction(this);
    // Redo answers both of the usual keys (Ctrl+Y and Ctrl+Shift+Z) on every platform.
    QList<QKeySequence> redoKeys = QKeySequence::keyBindings(QKeySequence::Redo);
    for (const QKeySequence &key :
         {QKeySequence(Qt::CTRL + Qt::Key_Y), QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_Z)})
        if (!redoKeys.contains(key))
            redoKeys.append(key);
    redo->setShortcuts(redoKeys);
    OssUndoManager *history = OssUndoManager::instance();
    connect(undo, &QAction::triggered, history, &OssUndoManager::undo);
    connect(redo, &QAction::triggered, history, &OssUndoManager::redo);
    // The actions name the step they act on ("&Undo Move Blur") and are off when there is none.
    const auto followHistory = [undo, redo, history] {
        const auto label = [](const QString &prefix, const QString &step) {
            return step.isEmpty() ? prefix : prefix + QLatin1Char(' ') + step;
        };
        undo->setEnabled(history->canUndo());
        undo->setText(label(tr("&Undo"), history->undoText()));
        redo->setEnabled(history->canRedo());
        redo->setText(label(tr("&Redo"), history->redoText()));
    };
    followHistory();
    connect(history, &OssUndoManager::historyChanged, undo, followHistory);
    edit->addAction(undo);
    edit->addAction(redo);
    edit->addSeparator();
    edit->addAction(tr("&Preferences..."), this, &OssMainWindow::showPreferences);
    edit->addAction(tr("&Keyboard Shortcuts..."), this, &OssMainWindow::showShortcutEditor);

    m_projectMenu = menuBar()->addMenu(tr("&Project"));
    connect(m_projectMenu, &QMenu::aboutToShow, this, &OssMainWindow::fillProjectMenu);
    fillProjectMenu();

    m_windowMenu = menuBar()->addMenu(tr("&Window"));
    m_helpMenu = menuBar()->addMenu(tr("&Help"));
    m_helpMenu->addAction(tr("&About Ossa"), this, &OssMainWindow::showAbout);

    m_menuTimer = new QTimer(this);
    m_menuTimer->setSingleShot(true);
    m_menuTimer->setInterval(0);
    connect(m_menuTimer, &QTimer::timeout, this, &OssMainWindow::rebuildActionMenus);
    connect(OssActionTreeManager::instance(), &OssActionTreeManager::actionRegistered, this,
            &OssMainWindow::scheduleMenuRebuild);

    OssPaletteManager *palettes = OssPaletteManager::instance();
    for (OssPalette *palette : palettes->palettes())
        addPalette(palette);
    connect(palettes, &OssPaletteManager::paletteRegistered, this, &OssMainWindow::addPalette);

    connect(OssProjectManager::instance(), &OssProjectManager::projectOpenCompleted, this,
            &OssMainWindow::updateTitle);
    connect(OssProjectManager::instance(), &OssProjectManager::projectClosed, this,
            &OssMainWindow::updateTitle);
    connect(history, &OssUndoManager::cleanChanged, this,
            [this](bool clean) { setWindowModified(!clean); });
    rebuildActionMenus();
    updateTitle();
}

OssMainWindow::~OssMainWindow()
{
    if (OssGuiApplication::mainWindow() == this)
        OssGuiApplication::setMainWindow(nullptr);
    // The docks outlive this part of the window (the base classes delete them): what they
    // announce while going must not reach this object any more.
    for (auto it = m_docks.begin(); it != m_docks.end(); ++it)
        if (it.value())
            disconnect(it.value(), nullptr, this, nullptr);
    // Palettes belong to their plug-ins; give them back before the docks go.
    for (auto it = m_docks.begin(); it != m_docks.end(); ++it)
        if (it.value() && it.value()->widget()) {
            QWidget *palette = it.value()->widget();
            it.value()->setWidget(nullptr);
            palette->setParent(nullptr);
            palette->hide();
        }
}

QStringList OssMainWindow::menuPathForFolder(const QString &folder)
{
    QStringList parts = folder.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    if (!parts.isEmpty() && parts.first() == QLatin1String("Ossa"))
        parts.removeFirst();
    if (!parts.isEmpty()) {
        // Folder names are camel case ("NodeGraph"); menus show words.
        const OssGroupParameterObject words;
        parts.first() = words.prettyPropertyName(parts.first());
    }
    return parts;
}

QMenu *OssMainWindow::topMenu(const QString &title) const
{
    for (QMenu *menu : m_actionMenus)
        if (menu->title() == title)
            return menu;
    return nullptr;
}

void OssMainWindow::scheduleMenuRebuild()
{
    m_menuTimer->start();
}

void OssMainWindow::rebuildActionMenus()
{
    for (QMenu *menu : qAsConst(m_actionMenus)) {
        menuBar()->removeAction(menu->menuAction());
        menu->deleteLater();
    }
    m_actionMenus.clear();
    OssActionTreeManager *tree = OssActionTreeManager::instance();
    QHash<QString, QMenu *> menus; // by joined menu path
    for (const QString &folder : tree->folders()) {
        const QStringList path = menuPathForFolder(folder);
        if (path.isEmpty())
            continue;
        QMenu *parent = nullptr;
        QString key;
        for (const QString &part : path) {
            key += QLatin1Char('/') + part;
            QMenu *menu = menus.value(key);
            if (!menu) {
                if (parent) {
                    menu = parent->addMenu(part);
                } else {
                    menu = new QMenu(part, this);
                    menuBar()->insertMenu(m_windowMenu->menuAction(), menu);
                    m_actionMenus.append(menu);
                }
                menus.insert(key, menu);
            }
            parent = menu;
        }
        // Folders that share a menu ("/Ossa/NodeGraph/" and "/Ossa/NodeGraph") each get a
        // section of their own.
        const QList<QAction *> actions = tree->actions(folder);
        if (!actions.isEmpty() && !parent->actions().isEmpty())
            parent->addSeparator();
        for (QAction *action : actions)
            parent->addAction(action);
    }
    applyDefaultShortcuts();
}

void OssMainWindow::applyDefaultShortcuts()
{
    // The node graph's keys act where the node graph has the focus.
    OssPalette *scope = OssPaletteManager::instance()->find(QStringLiteral("Node Graph"));
    if (!scope)
        return;
    OssActionTreeManager *tree = OssActionTreeManager::instance();
    for (const QString &folder : tree->folders())
        for (QAction *action : tree->actions(folder))
            OssShortcutMap::bind(
                action,
                OssActionTreeManager::identity(OssActionTreeManager::fullPath(folder, action)),
                scope);
}

QDockWidget *OssMainWindow::sideDock() const
{
    QDockWidget *side = nullptr;
    for (const QPointer<QDockWidget> &dock : qAsConst(m_docks))
        if (dock && dock != m_mainDock && dockWidgetArea(dock) == Qt::RightDockWidgetArea &&
            dock->isVisible() && !dock->isFloating())
            side = dock;
    return side;
}

void OssMainWindow::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    QDockWidget *side = sideDock();
    if (m_mainDock && side && m_mainDock->isVisible() && m_panelWidth > 0 && m_layoutWidth > 0)
        resizeDocks({m_mainDock.data(), side}, {qMax(200, width() - m_panelWidth), m_panelWidth},
                    Qt::Horizontal);
    m_layoutWidth = width();
}

void OssMainWindow::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    if (!m_shown) {
        m_shown = true;
        QTimer::singleShot(0, this, &OssMainWindow::arrangeDocks);
    }
}

bool OssMainWindow::eventFilter(QObject *watched, QEvent *event)
{
    // The panels' width as the user or the arrangement left it, not as a window resize made it.
    if (event->type() == QEvent::Resize && watched == sideDock() && width() == m_layoutWidth)
        m_panelWidth = static_cast<QWidget *>(watched)->width();
    return QMainWindow::eventFilter(watched, event);
}

void OssMainWindow::fillProjectMenu()
{
    m_projectMenu->clear();
    m_projectMenu->addSection(tr("Shading Groups"));
    const OssProject *project = OssProjectManager::instance()->currentProject();
    if (!project || project->shadingGroups().isEmpty()) {
        m_projectMenu->addAction(tr("(none)"))->setEnabled(false);
        return;
    }
    const OssShaderNetwork *current = OssShaderNetworkManager::instance()->currentShaderNetwork();
    if (current)
        current = current->rootNetwork();
    auto *choice = new QActionGroup(m_projectMenu);
    for (OssShadingGroup *group : project->shadingGroups()) {
        QAction *action = m_projectMenu->addAction(
            group->entityName().isEmpty()
                ? group->name()
                : QStringLiteral("%1 (%2)").arg(group->name(), group->entityName()));
        action->setCheckable(true);
        action->setChecked(group->network() && group->network() == current);
        action->setActionGroup(choice);
        const QString name = group->name();
        connect(action, &QAction::triggered, this, [this, name] { showShadingGroup(name); });
    }
}

bool OssMainWindow::showShadingGroup(const QString &name)
{
    const OssProject *project = OssProjectManager::instance()->currentProject();
    if (!project)
        return false;
    for (OssShadingGroup *group : project->shadingGroups())
        if (group->name() == name && group->network()) {
            OssShaderNetworkManager::instance()->setCurrentShaderNetwork(group->network());
            return true;
        }
    return false;
}

void OssMainWindow::arrangeDocks()
{
    QDockWidget *side = sideDock();
    if (!m_mainDock || !side)
        return;
    const int width = qMax(400, this->width());
    m_panelWidth = width - width * 3 / 4;
    m_layoutWidth = this->width();
    resizeDocks({m_mainDock.data(), side}, {width - m_panelWidth, m_panelWidth}, Qt::Horizontal);
}

void OssMainWindow::addPalette(OssPalette *palette)
{
    if (!palette || m_docks.contains(palette))
        return;
    const QString title =
        palette->windowTitle().isEmpty() ? palette->objectName() : palette->windowTitle();
    auto *dock = new QDockWidget(title, this);
    dock->setObjectName(palette->objectName() + QStringLiteral("Dock"));
    dock->setWidget(palette);
    palette->show();
    // The node graph takes the large left area; panels go to the right.
    const bool main = m_docks.isEmpty();
    addDockWidget(main ? Qt::LeftDockWidgetArea : Qt::RightDockWidgetArea, dock);
    if (main) {
        m_mainDock = dock;
        // Shown again, the node graph takes its large share back.
        connect(dock, &QDockWidget::visibilityChanged, this, [this, dock](bool visible) {
            if (!visible) {
                // Closed by the user, not hidden with a minimised window.
                m_graphClosed = dock->isHidden();
                return;
            }
            if (m_graphClosed) {
                m_graphClosed = false;
                QTimer::singleShot(0, this, &OssMainWindow::arrangeDocks);
            }
        });
    }
    m_docks.insert(palette, dock);
    dock->installEventFilter(this);
    arrangeDocks();
    m_windowMenu->addAction(dock->toggleViewAction());
    connect(palette, &OssPalette::showRequested, dock, [dock] {
        dock->show();
        dock->raise();
    });
    connect(palette, &QObject::destroyed, this, [this, palette, dock] {
        m_docks.remove(palette);
        if (dock)
            dock->deleteLater();
    });
}

QDockWidget *OssMainWindow::dockFor(const OssPalette *palette) const
{
    return m_docks.value(palette).data();
}

void OssMainWindow::updateTitle()
{
    const OssProject *project = OssProjectManager::instance()->currentProject();
    if (!project) {
        setWindowTitle(QStringLiteral("Ossa"));
        setWindowModified(false);
        return;
    }
    const QString name =
        project->filePath().isEmpty() ? project->name() : QFileInfo(project->filePath()).fileName();
    setWindowTitle(QStringLiteral("Ossa - %1[*]").arg(name));
    setWindowModified(!OssUndoManager::instance()->isClean());
}

void OssMainWindow::reportError(const QString &title, const QString &message)
{
    OSS_DEBUG("[ !! ] %s: %s", qPrintable(title), qPrintable(message));
    OssMessageBox::warning(this, title, message);
}

void OssMainWindow::takeBackFocus()
{
    activateWindow();
    raise();
}

QString OssMainWindow::chooseProjectFile(bool save)
{
    // A queued answer stands for the user's choice; without popups nothing is chosen.
    QString path;
    if (OssApplication::hasDialogAnswer()) {
        path = OssApplication::takeDialogAnswer().toString();
    } else if (OssApplication::popupsAllowed()) {
        const QString folder = OssResourceInfo::instance()->projectPath();
        const QString filter = tr("Ossa projects (*.ossa)");
        path = save ? QFileDialog::getSaveFileName(this, tr("Save Project As"), folder, filter)
                    : QFileDialog::getOpenFileName(this, tr("Open Project"), folder, filter);
        takeBackFocus();
    }
    return path;
}

bool OssMainWindow::maybeSave()
{
    const OssProject *project = OssProjectManager::instance()->currentProject();
    if (!project || OssUndoManager::instance()->isClean())
        return true;
    const QString name =
        project->filePath().isEmpty() ? project->name() : QFileInfo(project->filePath()).fileName();
    const QMessageBox::StandardButton answer = OssMessageBox::warning(
        this, tr("Save Changes"),
        tr("The project \"%1\" has unsaved changes.\nDo you want to save them?").arg(name),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    takeBackFocus();
    switch (answer) {
    case QMessageBox::Save:
        return saveProject();
    case QMessageBox::Discard:
        return true;
    default:
        return false;
    }
}

void OssMainWindow::closeEvent(QCloseEvent *event)
{
    if (maybeSave())
        event->accept();
    else
        event->ignore();
}

void OssMainWindow::newProject()
{
    if (!maybeSave())
        return;
    OssProjectManager::instance()->newProject();
}

bool OssMainWindow::openProject(const QString &path)
{
    if (!maybeSave())
        return false;
    return load(path);
}

bool OssMainWindow::load(const QString &path)
{
    QString error;
    if (!OssProjectManager::instance()->openProject(path, &error)) {
        reportError(tr("Open Project"), error);
        return false;
    }
    return true;
}

void OssMainWindow::openProjectDialog()
{
    if (!maybeSave())
        return;
    const QString path = chooseProjectFile(false);
    if (!path.isEmpty())
        load(path);
}

bool OssMainWindow::saveProject()
{
    const OssProject *project = OssProjectManager::instance()->currentProject();
    if (!project)
        return false;
    if (project->filePath().isEmpty()) {
        saveProjectAsDialog();
        const OssProject *current = OssProjectManager::instance()->currentProject();
        return current && !current->filePath().isEmpty() && OssUndoManager::instance()->isClean();
    }
    return saveProjectAs(project->filePath());
}

bool OssMainWindow::saveProjectAs(const QString &path)
{
    QString error;
    if (!OssProjectManager::instance()->saveProject(path, &error)) {
        reportError(tr("Save Project"), error);
        return false;
    }
    updateTitle();
    return true;
}

void OssMainWindow::saveProjectAsDialog()
{
    const QString path = chooseProjectFile(true);
    if (!path.isEmpty())
        saveProjectAs(path);
}

void OssMainWindow::showPreferences()
{
    OssPreferencesDialog dialog(this);
    dialog.resize(700, 500);
    dialog.exec();
}

void OssMainWindow::showShortcutEditor()
{
    OssShortcutEditor dialog(this);
    dialog.resize(800, 600);
    connect(&dialog, &OssShortcutEditor::applied, this, &OssMainWindow::applyDefaultShortcuts);
    dialog.exec();
    takeBackFocus();
}

QString OssMainWindow::aboutText() const
{
    QStringList lines{tr("Ossa node graph host shell.")};
    if (!m_plugins || m_plugins->plugins().isEmpty()) {
        lines << tr("No plug-ins are loaded.");
    } else {
        lines << tr("Loaded plug-ins:");
        for (const OssPluginHost::LoadedPlugin &plugin : m_plugins->plugins())
            lines << QStringLiteral("%1 (version %2): %3")
                         .arg(plugin.name)
                         .arg(plugin.version)
                         .arg(plugin.description);
    }
    return lines.join(QLatin1Char('\n'));
}

void OssMainWindow::showAbout()
{
    OssMessageBox::information(this, tr("About Ossa"), aboutText());
}
