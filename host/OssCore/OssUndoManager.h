#pragma once

#include "OssCoreExport.h"

#include <QObject>
#include <QString>

#include <memory>
#include <vector>

class OssUndoCommand;
class OssUndoMacroCommand;

// The host's one undo history: a list of steps and the number of them that are done.
//
// addUndo() runs a step (its redo()) and records it; recording drops the steps that were undone.
// While an AutoMacro is open, steps join the macro instead of the history; when the outermost
// macro closes, everything done inside it becomes one undo step with the macro's title. An empty
// macro leaves no step behind.
class OSSCORE_EXPORT OssUndoManager : public QObject
{
    Q_OBJECT
public:
    static OssUndoManager *instance();
    ~OssUndoManager() override;

    // Takes ownership of Step. With Execute false the change is already made and redo() is not
    // called now (only on later redos).
    void addUndo(OssUndoCommand *step, bool execute = true);

    bool inMacro() const { return m_macroDepth > 0; }
    int macroDepth() const { return m_macroDepth; }
    // True while a recorded step is being undone or redone; host operations that record steps
    // must not record new ones then.
    bool isReplaying() const { return m_replaying; }

    bool canUndo() const { return m_index > 0; }
    bool canRedo() const { return m_index < count(); }
    // The titles of the next step to undo and to redo; empty when there is none.
    QString undoText() const;
    QString redoText() const;
    // Recorded steps, done and undone.
    int count() const { return static_cast<int>(m_steps.size()); }
    // Steps done: the next undo takes back step index() - 1.
    int index() const { return m_index; }
    // Drops the whole history (a project closed or opened). Not allowed inside a macro.
    void clear();

    // The clean state is the history position of the last save; undoing or redoing away from it
    // makes the history unclean, and recording over it (after undoing past it) loses it.
    void setClean();
    bool isClean() const { return m_cleanIndex == m_index; }

    // A scoped macro: every step added while it lives is one undo step titled Title.
    class OSSCORE_EXPORT AutoMacro
    {
    public:
        explicit AutoMacro(const QString &title);
        ~AutoMacro();
        AutoMacro(const AutoMacro &) = delete;
        AutoMacro &operator=(const AutoMacro &) = delete;

        void addUndo(OssUndoCommand *step, bool execute = true);
        // Undoes and discards what was done inside this macro so far; the network and the history
        // are back to what they were when it opened.
        void cancel();
        bool isCancelled() const { return m_cancelled; }

    private:
        int m_firstStep = 0;
        bool m_cancelled = false;
    };

public slots:
    void undo();
    void redo();

signals:
    // After a step is pushed, undone or redone, and after the history is cleared.
    void historyChanged();
    // The history reached or left its clean state (the position of the last save).
    void cleanChanged(bool clean);

private:
    explicit OssUndoManager(QObject *parent = nullptr);

    // Appends a step that is already done, dropping the undone steps after the present one.
    void record(std::unique_ptr<OssUndoCommand> step);
    // Tells listeners the history changed, and whether it became clean or unclean.
    void announce(bool wasClean);
    void openMacro(const QString &title);
    void closeMacro();
    int macroStepCount() const;
    void cancelMacroFrom(int firstStep);

    std::vector<std::unique_ptr<OssUndoCommand>> m_steps;
    int m_index = 0;
    int m_cleanIndex = 0;
    std::unique_ptr<OssUndoMacroCommand> m_macro;
    int m_macroDepth = 0;
    bool m_replaying = false;
};

using AutoMacro = OssUndoManager::AutoMacro;
