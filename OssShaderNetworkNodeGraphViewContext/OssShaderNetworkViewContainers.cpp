// The container operations of the shader-network view: backdrops that hold nodes keep clear of
// each other and grow to hold their members.
#include "OssShaderNetworkView.h"

#include "OssSnNodeGraphViewContext.h"
#include "ZelGLTextureToken.h"

#include <OssDebug.h>
#include <OssNgBackdropNode.h>
#include <OssNgStyle.h>
#include <OssNgUndo.h>
#include <OssSnBaseNode.h>
#include <OssUndoCommand.h>
#include <OssUndoManager.h>

#include <QGraphicsScene>

#include <algorithm>

// Keeps the renderer's texture cache alive while the plug-in is loaded.
static const ZelGLTextureToken s_textureToken;

namespace {

constexpr qreal Gap = 30.0;
// Containers pushing each other: a chain longer than this is a loop.
constexpr int MaxPushes = 1000;

QRectF areaOf(const OssNgBackdropNode *backdrop)
{
    return QRectF(backdrop->pos(), backdrop->nodeSize());
}

// A backdrop's own rectangle (its bounding rectangle has a pixel of outline around it); another
// node's bounding rectangle.
QRectF sceneArea(const OssNgNode *node)
{
    if (const auto *backdrop = qobject_cast<const OssNgBackdropNode *>(node))
        return areaOf(backdrop);
    return node->sceneBoundingRect();
}

OssSnBaseNode *businessNodeOf(const OssNgNode *gui)
{
    return gui ? qobject_cast<OssSnBaseNode *>(gui->parent()) : nullptr;
}

// One move of a container with what it holds. Undone and redone the same way, from the
// positions taken when it was made: a backdrop's own list of children changes whenever it is
// picked up, so each held node's position is restored by itself.
class ContainerMoveUndo : public OssUndoCommand
{
public:
    ContainerMoveUndo(OssNgBackdropNode *backdrop, const QPointF &delta)
        : OssUndoCommand(QStringLiteral("Move %1").arg(backdrop->text())), m_backdrop(backdrop),
          m_from(backdrop->pos()), m_to(backdrop->pos() + delta)
    {
        backdrop->refreshChildrenList();
        for (const QPointer<OssNgNode> &child : backdrop->childrenList())
            if (child && !child->isSelected())
                m_held.append({child, child->pos(), child->pos() + delta});
    }
    void redo() override { apply(true); }
    void undo() override { apply(false); }

private:
    struct Held
    {
        QPointer<OssNgNode> node;
        QPointF from, to;
    };
    void apply(bool forward)
    {
        if (!m_backdrop)
            return;
        m_backdrop->setPosition(forward ? m_to : m_from);
        for (const Held &held : qAsConst(m_held))
            if (held.node)
                held.node->setPos(forward ? held.to : held.from);
    }
    QPointer<OssNgBackdropNode> m_backdrop;
    QPointF m_from, m_to;
    QList<Held> m_held;
};

} // namespace

OssNgBackdropNode *OssShaderNetworkView::containerBackdrop(OssSnBaseNode *container) const
{
    OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(container);
    if (!gui)
        return nullptr;
    auto *backdrop = qobject_cast<OssNgBackdropNode *>(gui);
    if (!backdrop)
        OSS_DEBUG("[ !! ] Invalid container gui node found for node '%s'",
                  qPrintable(container->name()));
    return backdrop;
}

void OssShaderNetworkView::moveContainerBy(OssNgBackdropNode *backdrop, const QPointF &delta)
{
    if (delta.isNull())
        return;
    auto *step = new ContainerMoveUndo(backdrop, delta);
    OssUndoManager::instance()->addUndo(step, true);
}

void OssShaderNetworkView::resizeContainer(OssNgBackdropNode *backdrop, const QRectF &sceneRect)
{
    if (sceneRect == areaOf(backdrop) || !sceneRect.isValid())
        return;
    backdrop->saveBoundingRect();
    backdrop->setNodeSize(sceneRect.size());
    backdrop->setRect(QRectF(sceneRect.topLeft() - backdrop->pos(), sceneRect.size()));
    OssUndoManager::instance()->addUndo(new OssNgBackdropNodeRectChangeUndo(backdrop), false);
}

void OssShaderNetworkView::respaceContainer(OssSnBaseNode *container, OssSnBaseNode *reference)
{
    OssNgBackdropNode *backdrop = containerBackdrop(container);
    OssNgNode *ref = OssSnNodeGraphViewContext::guiNodeOf(reference);
    if (!backdrop || !ref)
        return;
    const QRectF oldArea = areaOf(backdrop);
    const QRectF refRect = sceneArea(ref);
    backdrop->refreshChildrenList();
    auto *refBackdrop = qobject_cast<OssNgBackdropNode *>(ref);
    if (refBackdrop)
        refBackdrop->refreshChildrenList();
    const auto heldByReference = [refBackdrop](OssNgNode *node) {
        if (!refBackdrop)
            return false;
        for (const QPointer<OssNgNode> &child : refBackdrop->childrenList())
            if (child == node)
                return true;
        return false;
    };
    // The members below the reference, and how far the first of them must go down.
    QList<OssNgNode *> below;
    qreal top = 0;
    for (const QPointer<OssNgNode> &member : backdrop->childrenList()) {
        if (!member || member == ref || heldByReference(member))
            continue;
        const QRectF rect = sceneArea(member);
        if (rect.top() < refRect.top())
            continue;
        top = below.isEmpty() ? rect.top() : qMin(top, rect.top());
        below.append(member);
    }
    const qreal shift = below.isEmpty() ? 0 : refRect.bottom() + Gap - top;
    if (shift > 0) {
        for (OssNgNode *member : qAsConst(below)) {
            // A member inside a pushed member backdrop moves with it.
            bool carried = false;
            for (OssNgNode *other : qAsConst(below))
                if (auto *otherBackdrop = qobject_cast<OssNgBackdropNode *>(other))
                    if (other != member && areaOf(otherBackdrop).contains(sceneArea(member)))
                        carried = true;
            if (carried)
                continue;
            if (auto *memberBackdrop = qobject_cast<OssNgBackdropNode *>(member)) {
                moveContainerBy(memberBackdrop, QPointF(0, shift));
            } else {
                const QPointF from = member->pos();
                member->setPos(from + QPointF(0, shift));
                OssUndoManager::instance()->addUndo(
                    new OssNgNodePositionChangeUndo(member, from, member->pos()), false);
            }
        }
    }
    // The container holds every member, the reference included, with a gap to spare.
    QRectF needed = oldArea;
    needed |= refRect.adjusted(-Gap, -Gap, Gap, Gap);
    for (OssNgNode *member : qAsConst(below))
        needed |= sceneArea(member).adjusted(-Gap, -Gap, Gap, Gap);
    resizeContainer(backdrop, needed);
    if (areaOf(backdrop) != oldArea)
        settleContainersAround(container, oldArea);
}

void OssShaderNetworkView::moveContainerDown(OssSnBaseNode *container, OssSnBaseNode *reference)
{
    OssNgBackdropNode *backdrop = containerBackdrop(container);
    OssNgNode *ref = OssSnNodeGraphViewContext::guiNodeOf(reference);
    if (!backdrop || !ref)
        return;
    const QRectF oldArea = areaOf(backdrop);
    const qreal shift = sceneArea(ref).bottom() + Gap - oldArea.top();
    if (shift <= 0)
        return;
    moveContainerBy(backdrop, QPointF(0, shift));
    settleContainersAround(container, oldArea);
}

void OssShaderNetworkView::stretchContainerBy(OssSnBaseNode *container, OssSnBaseNode *node)
{
    OssNgBackdropNode *backdrop = containerBackdrop(container);
    OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(node);
    if (!backdrop || !gui)
        return;
    const QRectF oldArea = areaOf(backdrop);
    const QRectF needed = oldArea.united(sceneArea(gui).adjusted(-Gap, -Gap, Gap, Gap));
    if (needed == oldArea)
        return;
    OSS_DEBUG("* Stretch out container node '%s'", qPrintable(container->name()));
    resizeContainer(backdrop, needed);
    settleContainersAround(container, oldArea);
}

void OssShaderNetworkView::wrapContainerAround(OssSnBaseNode *container,
                                               const QList<OssSnBaseNode *> &members, bool undoable)
{
    OssNgBackdropNode *backdrop = containerBackdrop(container);
    if (!backdrop)
        return;
    QRectF bounds;
    for (OssSnBaseNode *member : members)
        if (OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(member))
            if (gui != backdrop)
                bounds |= sceneArea(gui);
    if (bounds.isNull())
        return;
    const QRectF oldArea = areaOf(backdrop);
    backdrop->saveBoundingRect();
    backdrop->wrapAroundSelection(bounds);
    if (undoable)
        OssUndoManager::instance()->addUndo(new OssNgBackdropNodeRectChangeUndo(backdrop), false);
    settleContainersAround(container, oldArea);
}

void OssShaderNetworkView::moveContainerToFreshLocation(OssSnBaseNode *container, bool preserveY)
{
    OssNgBackdropNode *backdrop = containerBackdrop(container);
    if (!backdrop || !scene())
        return;
    // Right of everything that is neither the container nor held by it.
    backdrop->refreshChildrenList();
    QSet<const QGraphicsItem *> own{backdrop};
    for (const QPointer<OssNgNode> &child : backdrop->childrenList())
        own.insert(child.data());
    QRectF bounds;
    for (QGraphicsItem *item : scene()->items())
        if (!own.contains(item) && OssNgNode::fromItem(item) == item)
            bounds |= item->sceneBoundingRect();
    if (bounds.isNull())
        return;
    const qreal y = preserveY ? backdrop->pos().y() : bounds.top();
    moveContainerBy(backdrop, QPointF(bounds.right() + Gap, y) - backdrop->pos());
}

void OssShaderNetworkView::settleContainersAround(OssSnBaseNode *container, const QRectF &oldRect)
{
    static int depth = 0;
    auto *backdrop =
        qobject_cast<OssNgBackdropNode *>(OssSnNodeGraphViewContext::guiNodeOf(container));
    if (!backdrop || !scene() || depth > MaxPushes)
        return;
    ++depth;
    const QRectF area = areaOf(backdrop);
    // The smallest other backdrop that held this one: it respaces its members.
    OssNgBackdropNode *holder = nullptr;
    QList<OssNgBackdropNode *> below;
    for (QGraphicsItem *item : scene()->items()) {
        auto *other = qgraphicsitem_cast<OssNgBackdropNode *>(item);
        if (!other || other == backdrop)
            continue;
        const QRectF otherArea = areaOf(other);
        if (otherArea.contains(oldRect)) {
            if (!holder || areaOf(holder).width() * areaOf(holder).height() >
                               otherArea.width() * otherArea.height())
                holder = other;
            continue;
        }
        // Below this one before the change, side by side with it, and now within a gap of it.
        if (otherArea.top() >= oldRect.top() && !oldRect.contains(otherArea) &&
            !area.contains(otherArea) && otherArea.left() < area.right() &&
            otherArea.right() > area.left() && otherArea.top() < area.bottom() + Gap)
            below.append(other);
    }
    if (OssSnBaseNode *holderNode = businessNodeOf(holder)) {
        emit holderNode->containerRespacedWrt(container);
    } else {
        std::sort(below.begin(), below.end(), [](OssNgBackdropNode *a, OssNgBackdropNode *b) {
            return a->pos().y() < b->pos().y();
        });
        for (OssNgBackdropNode *other : qAsConst(below))
            if (OssSnBaseNode *otherNode = businessNodeOf(other))
                emit otherNode->containerMovedDown(container);
    }
    --depth;
}
