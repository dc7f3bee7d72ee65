#pragma once

#include "OssCoreExport.h"

#include <QObject>
#include <QString>

class QUndoCommand;
class QUndoStack;
class OssUndoMacroCommand;

// The host's one undo history, on a QUndoStack.
//
// addUndo() runs a step (its redo()) and records it. While an AutoMacro is open, steps join the
// macro instead of the stack; when the outermost macro closes, everything done inside it becomes
// one undo step with the macro's title. An empty macro leaves no step behind.
class OSSCORE_EXPORT OssUndoManager : public QObject
{
    Q_OBJECT
public:
    static OssUndoManager *instance();

    QUndoStack *undoStack() const { return m_stack; }

    // Takes ownership of Step. With Execute false the change is already made and redo() is not
    // called now (only on later redos).
    void addUndo(QUndoCommand *step, bool execute = true);

    bool inMacro() const { return m_macroDepth > 0; }
    int macroDepth() const { return m_macroDepth; }
    // True while a recorded step is being undone or redone; host operations that record steps
    // must not record new ones then.
    bool isReplaying() const { return m_replaying; }

    bool canUndo() const;
    bool canRedo() const;
    QString undoText() const;
    QString redoText() const;
    int count() const;
    // Drops the whole history (a project closed or opened). Not allowed inside a macro.
    void clear();

    // A scoped macro: every step added while it lives is one undo step titled Title.
    class OSSCORE_EXPORT AutoMacro
    {
    public:
        explicit AutoMacro(const QString &title);
        ~AutoMacro();
        AutoMacro(const AutoMacro &) = delete;
        AutoMacro &operator=(const AutoMacro &) = delete;

        void addUndo(QUndoCommand *step, bool execute = true);
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
    // After a step is pushed, undone or redone.
    void historyChanged();

private:
    explicit OssUndoManager(QObject *parent = nullptr);

    void openMacro(const QString &title);
    void closeMacro();
    int macroStepCount() const;
    void cancelMacroFrom(int firstStep);

    QUndoStack *m_stack = nullptr;
    OssUndoMacroCommand *m_macro = nullptr;
    int m_macroDepth = 0;
    bool m_replaying = false;

    friend class OssUndoMacroCommand;
};

using AutoMacro = OssUndoManager::AutoMacro;
