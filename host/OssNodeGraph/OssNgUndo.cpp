#include "OssNgUndo.h"

#include "OssNgBackdropNode.h"
#include "OssNgNode.h"

OssNgNodePositionChangeUndo::OssNgNodePositionChangeUndo(OssNgNode *node)
    : OssNgNodePositionChangeUndo(node, node->savedPosition(), node->pos())
{}

OssNgNodePositionChangeUndo::OssNgNodePositionChangeUndo(OssNgNode *node,
                                                         const QPointF &oldPosition,
                                                         const QPointF &newPosition)
    : OssUndoCommand(QStringLiteral("Move %1").arg(node->text())), m_node(node), m_old(oldPosition),
      m_new(newPosition)
{}

void OssNgNodePositionChangeUndo::apply(const QPointF &position)
{
    if (!m_node || m_node->pos() == position)
        return;
    if (auto *backdrop = qobject_cast<OssNgBackdropNode *>(m_node.data()))
        backdrop->placeAlone(position);
    else
        m_node->setPos(position);
}

void OssNgNodePositionChangeUndo::redo()
{
    apply(m_new);
}

void OssNgNodePositionChangeUndo::undo()
{
    apply(m_old);
}

OssNgBackdropNodeRectChangeUndo::OssNgBackdropNodeRectChangeUndo(OssNgBackdropNode *backdrop)
    : OssUndoCommand(QStringLiteral("Resize %1").arg(backdrop->titleText())), m_backdrop(backdrop),
      m_old(backdrop->savedBoundingRect()), m_new(QRectF(backdrop->pos(), backdrop->nodeSize()))
{}

void OssNgBackdropNodeRectChangeUndo::apply(const QRectF &rect)
{
    if (!m_backdrop || !rect.isValid())
        return;
    // Only the backdrop moves: its children have undo steps of their own.
    m_backdrop->setNodeSize(rect.size());
    m_backdrop->setRect(QRectF(rect.topLeft() - m_backdrop->pos(), rect.size()));
}

void OssNgBackdropNodeRectChangeUndo::redo()
{
    apply(m_new);
}

void OssNgBackdropNodeRectChangeUndo::undo()
{
    apply(m_old);
}
