#include "OssUndoManager.h"

#include <QUndoCommand>
#include <QUndoStack>

#include <vector>

// The step a macro becomes. Its steps already ran when they were added, so the first redo() (the
// one QUndoStack::push makes) does nothing.
class OssUndoMacroCommand : public QUndoCommand
{
public:
    explicit OssUndoMacroCommand(const QString &title) : QUndoCommand(title) {}
    ~OssUndoMacroCommand() override
    {
        for (QUndoCommand *step : m_steps)
            delete step;
    }

    void undo() override
    {
        for (auto it = m_steps.rbegin(); it != m_steps.rend(); ++it)
            (*it)->undo();
    }
    void redo() override
    {
        if (m_skipRedo) {
            m_skipRedo = false;
            return;
        }
        for (QUndoCommand *step : m_steps)
            step->redo();
    }

    std::vector<QUndoCommand *> m_steps;
    bool m_skipRedo = true;
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

// A step pushed outside a macro whose change is already made.
class AlreadyDoneCommand : public QUndoCommand
{
public:
    explicit AlreadyDoneCommand(QUndoCommand *step) : QUndoCommand(step->text()), m_step(step) {}
    ~AlreadyDoneCommand() override { delete m_step; }
    void undo() override { m_step->undo(); }
    void redo() override
    {
        if (m_first) {
            m_first = false;
            return;
        }
        m_step->redo();
    }

private:
    QUndoCommand *m_step;
    bool m_first = true;
};
} // namespace

OssUndoManager *OssUndoManager::instance()
{
    static OssUndoManager *manager = new OssUndoManager;
    return manager;
}

OssUndoManager::OssUndoManager(QObject *parent) : QObject(parent), m_stack(new QUndoStack(this)) {}

void OssUndoManager::addUndo(QUndoCommand *step, bool execute)
{
    if (!step)
        return;
    if (m_replaying) {
        // Undo and redo replay recorded steps; a step made during replay would be recorded twice.
        delete step;
        return;
    }
    if (m_macro) {
        if (execute) {
            ReplayGuard guard(m_replaying);
            step->redo();
        }
        m_macro->m_steps.push_back(step);
        return;
    }
    {
        ReplayGuard guard(m_replaying);
        m_stack->push(execute ? step : new AlreadyDoneCommand(step));
    }
    emit historyChanged();
}

void OssUndoManager::openMacro(const QString &title)
{
    if (m_macroDepth++ == 0)
        m_macro = new OssUndoMacroCommand(title);
}

void OssUndoManager::closeMacro()
{
    if (m_macroDepth == 0)
        return;
    if (--m_macroDepth > 0)
        return;
    OssUndoMacroCommand *macro = m_macro;
    m_macro = nullptr;
    // A cancelled macro has no steps left unless more were made after the cancel.
    if (macro->m_steps.empty()) {
        delete macro;
        return;
    }
    {
        ReplayGuard guard(m_replaying);
        m_stack->push(macro);
    }
    emit historyChanged();
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
        QUndoCommand *step = m_macro->m_steps.back();
        m_macro->m_steps.pop_back();
        step->undo();
        delete step;
    }
}

bool OssUndoManager::canUndo() const
{
    return m_stack->canUndo();
}

bool OssUndoManager::canRedo() const
{
    return m_stack->canRedo();
}

QString OssUndoManager::undoText() const
{
    return m_stack->undoText();
}

QString OssUndoManager::redoText() const
{
    return m_stack->redoText();
}

int OssUndoManager::count() const
{
    return m_stack->count();
}

void OssUndoManager::clear()
{
    if (m_macro)
        return;
    m_stack->clear();
    emit historyChanged();
}

void OssUndoManager::undo()
{
    if (m_macro || !m_stack->canUndo())
        return;
    {
        ReplayGuard guard(m_replaying);
        m_stack->undo();
    }
    emit historyChanged();
}

void OssUndoManager::redo()
{
    if (m_macro || !m_stack->canRedo())
        return;
    {
        ReplayGuard guard(m_replaying);
        m_stack->redo();
    }
    emit historyChanged();
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

void OssUndoManager::AutoMacro::addUndo(QUndoCommand *step, bool execute)
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
