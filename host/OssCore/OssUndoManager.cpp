#include "OssUndoManager.h"

#include "OssUndoCommand.h"

// The step a macro becomes: the steps made inside it, undone in reverse order.
class OssUndoMacroCommand : public OssUndoCommand
{
public:
    explicit OssUndoMacroCommand(const QString &title) : OssUndoCommand(title) {}
    ~OssUndoMacroCommand() override
    {
        for (OssUndoCommand *step : m_steps)
            delete step;
    }

    void undo() override
    {
        for (auto it = m_steps.rbegin(); it != m_steps.rend(); ++it)
            (*it)->undo();
    }
    void redo() override
    {
        for (OssUndoCommand *step : m_steps)
            step->redo();
    }

    std::vector<OssUndoCommand *> m_steps;
};

namespace {
// Marks the manager as replaying for the duration of an undo or redo.
class ReplayGuard
{
public:
    explicit ReplayGuard(bool &flag) : m_flag(flag), m_previous(flag) { m_flag = true; }
    ~ReplayGuard() { m_flag = m_previous; }
    ReplayGuard(const ReplayGuard &) = delete;
    ReplayGuard &operator=(const ReplayGuard &) = delete;

private:
    bool &m_flag;
    bool m_previous;
};
} // namespace

OssUndoManager *OssUndoManager::instance()
{
    static OssUndoManager *manager = new OssUndoManager;
    return manager;
}

OssUndoManager::OssUndoManager(QObject *parent) : QObject(parent) {}

OssUndoManager::~OssUndoManager() = default;

void OssUndoManager::addUndo(OssUndoCommand *step, bool execute)
{
    if (!step)
        return;
    std::unique_ptr<OssUndoCommand> owned(step);
    if (m_replaying) {
        // Undo and redo replay recorded steps; a step made during replay would be recorded twice.
        return;
    }
    if (execute) {
        ReplayGuard guard(m_replaying);
        owned->redo();
    }
    if (m_macro) {
        m_macro->m_steps.push_back(owned.release());
        return;
    }
    const bool wasClean = isClean();
    record(std::move(owned));
    announce(wasClean);
}

void OssUndoManager::announce(bool wasClean)
{
    emit historyChanged();
    if (isClean() != wasClean)
        emit cleanChanged(isClean());
}

void OssUndoManager::record(std::unique_ptr<OssUndoCommand> step)
{
    // The undone steps go, newest first; a step that owns a node taken out of its network
    // deletes it with itself.
    while (count() > m_index)
        m_steps.pop_back();
    if (m_cleanIndex > m_index)
        m_cleanIndex = -1;
    m_steps.push_back(std::move(step));
    ++m_index;
}

void OssUndoManager::openMacro(const QString &title)
{
    if (m_macroDepth++ == 0)
        m_macro = std::make_unique<OssUndoMacroCommand>(title);
}

void OssUndoManager::closeMacro()
{
    if (m_macroDepth == 0)
        return;
    if (--m_macroDepth > 0)
        return;
    std::unique_ptr<OssUndoMacroCommand> macro = std::move(m_macro);
    // A cancelled macro has no steps left unless more were made after the cancel.
    if (macro->m_steps.empty())
        return;
    const bool wasClean = isClean();
    record(std::move(macro));
    announce(wasClean);
}

int OssUndoManager::macroStepCount() const
{
    return m_macro ? static_cast<int>(m_macro->m_steps.size()) : 0;
}

void OssUndoManager::cancelMacroFrom(int firstStep)
{
    if (!m_macro)
        return;
    ReplayGuard guard(m_replaying);
    while (static_cast<int>(m_macro->m_steps.size()) > firstStep) {
        OssUndoCommand *step = m_macro->m_steps.back();
        m_macro->m_steps.pop_back();
        step->undo();
        delete step;
    }
}

QString OssUndoManager::undoText() const
{
    return canUndo() ? m_steps[static_cast<size_t>(m_index - 1)]->text() : QString();
}

QString OssUndoManager::redoText() const
{
    return canRedo() ? m_steps[static_cast<size_t>(m_index)]->text() : QString();
}

void OssUndoManager::clear()
{
    if (m_macro)
        return;
    const bool wasClean = isClean();
    std::vector<std::unique_ptr<OssUndoCommand>> steps = std::move(m_steps);
    m_steps.clear();
    m_index = 0;
    m_cleanIndex = 0;
    for (std::unique_ptr<OssUndoCommand> &step : steps)
        step.reset();
    announce(wasClean);
}

void OssUndoManager::setClean()
{
    const bool wasClean = isClean();
    m_cleanIndex = m_index;
    if (!wasClean)
        emit cleanChanged(true);
}

void OssUndoManager::undo()
{
    if (m_macro || !canUndo())
        return;
    const bool wasClean = isClean();
    {
        ReplayGuard guard(m_replaying);
        m_steps[static_cast<size_t>(m_index - 1)]->undo();
        --m_index;
    }
    announce(wasClean);
}

void OssUndoManager::redo()
{
    if (m_macro || !canRedo())
        return;
    const bool wasClean = isClean();
    {
        ReplayGuard guard(m_replaying);
        m_steps[static_cast<size_t>(m_index)]->redo();
        ++m_index;
    }
    announce(wasClean);
}

OssUndoManager::AutoMacro::AutoMacro(const QString &title)
{
    OssUndoManager *manager = OssUndoManager::instance();
    manager->openMacro(title);
    m_firstStep = manager->macroStepCount();
}

OssUndoManager::AutoMacro::~AutoMacro()
{
    OssUndoManager::instance()->closeMacro();
}

void OssUndoManager::AutoMacro::addUndo(OssUndoCommand *step, bool execute)
{
    OssUndoManager::instance()->addUndo(step, execute);
}

void OssUndoManager::AutoMacro::cancel()
{
    if (m_cancelled)
        return;
    m_cancelled = true;
    OssUndoManager::instance()->cancelMacroFrom(m_firstStep);
}
