#pragma once

#include "OssCoreExport.h"

#include <QString>

// One step of the host's undo history: redo() makes the change (again), undo() takes it back
// exactly. The text names the step in the Edit menu ("Undo Move Blur").
//
// The host keeps its own step type rather than QUndoCommand, which Qt 5 puts in QtWidgets: the
// model libraries record undo steps and must not need widgets.
class OSSCORE_EXPORT OssUndoCommand
{
public:
    explicit OssUndoCommand(const QString &text = QString());
    virtual ~OssUndoCommand();
    OssUndoCommand(const OssUndoCommand &) = delete;
    OssUndoCommand &operator=(const OssUndoCommand &) = delete;

    virtual void redo() = 0;
    virtual void undo() = 0;

    QString text() const { return m_text; }
    void setText(const QString &text) { m_text = text; }

private:
    QString m_text;
};
