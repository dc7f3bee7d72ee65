#pragma once

#include "OssNodeGraphExport.h"

#include <OssUndoCommand.h>

#include <QPointF>
#include <QPointer>
#include <QRectF>

class OssNgNode;
class OssNgBackdropNode;

// One move of one GUI node: from the position saved with savePosition() (or given) to where it
// is now (or given). A backdrop moves alone: its children carry steps of their own.
class OSSNODEGRAPH_EXPORT OssNgNodePositionChangeUndo : public OssUndoCommand
{
public:
    explicit OssNgNodePositionChangeUndo(OssNgNode *node);
    OssNgNodePositionChangeUndo(OssNgNode *node, const QPointF &oldPosition,
                                const QPointF &newPosition);
    void redo() override;
    void undo() override;
    QPointF oldPosition() const { return m_old; }
    QPointF newPosition() const { return m_new; }

private:
    void apply(const QPointF &position);
    QPointer<OssNgNode> m_node;
    QPointF m_old, m_new;
};

// One change of a backdrop's rectangle (position and size): from the rectangle saved with
// saveBoundingRect() to the present one.
class OSSNODEGRAPH_EXPORT OssNgBackdropNodeRectChangeUndo : public OssUndoCommand
{
public:
    explicit OssNgBackdropNodeRectChangeUndo(OssNgBackdropNode *backdrop);
    void redo() override;
    void undo() override;

private:
    void apply(const QRectF &rect);
    QPointer<OssNgBackdropNode> m_backdrop;
    QRectF m_old, m_new;
};
