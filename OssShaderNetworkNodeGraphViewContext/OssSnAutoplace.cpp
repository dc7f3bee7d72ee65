#include "OssSnAutoplace.h"

#include "OssSnNodeGraphViewContext.h"

#include <OssDebug.h>
#include <OssLayerStreamUtils.h>
#include <OssNgBackdropNode.h>
#include <OssNgUndo.h>
#include <OssNgView.h>
#include <OssShaderNetwork.h>
#include <OssUndoManager.h>

#include <QGraphicsScene>
#include <QHash>
#include <QPair>
#include <QPointer>
#include <QVector>

#include <memory>

namespace {

constexpr qreal ColumnGap = 150.0;
constexpr qreal RowGap = 60.0;
constexpr qreal Clearance = 75.0;

const QString ViewerTag = QStringLiteral("_viewer");

// A node in a column, with the node (and input of it) it feeds; the root feeds nothing.
struct PlaceEntry
{
    QPointer<OssSnBaseNode> node;
    QPointer<OssSnBaseNode> downstream;
    QString input;
};

using Backdrops = QList<QPair<OssNgBackdropNode *, QList<OssNgNode *>>>;

// The visible backdrops among Nodes with their visible member nodes, to refit them afterwards.
Backdrops backdropsWithMembers(const QList<OssSnBaseNode *> &nodes)
{
    Backdrops backdrops;
    for (OssSnBaseNode *node : nodes) {
        auto *backdrop =
            qobject_cast<OssNgBackdropNode *>(OssSnNodeGraphViewContext::guiNodeOf(node));
        if (!backdrop || !backdrop->isVisible())
            continue;
        QList<OssNgNode *> members;
        for (QGraphicsItem *item : backdrop->nodesInside()) {
            OssNgNode *member = OssNgNode::fromItem(item);
            if (member && member->isVisible() && qobject_cast<OssSnBaseNode *>(member->parent()) &&
                !qobject_cast<OssNgBackdropNode *>(member))
                members.append(member);
        }
        backdrops.append({backdrop, members});
    }
    return backdrops;
}

// Nodes with a GUI node that feed no node but viewers; backdrops and viewers are none.
QList<OssSnBaseNode *> leaves(const QList<OssSnBaseNode *> &nodes)
{
    QList<OssSnBaseNode *> result;
    for (OssSnBaseNode *node : nodes) {
        if (node->hasTag(ViewerTag))
            continue;
        bool leaf = true;
        for (OssSnBaseNode *down : node->outputNodes())
            if (!down->hasTag(ViewerTag))
                leaf = false;
        if (leaf && OssSnNodeGraphViewContext::guiNodeOf(node) &&
            !qobject_cast<OssNgBackdropNode *>(OssSnNodeGraphViewContext::guiNodeOf(node)))
            result.append(node);
    }
    return result;
}

// Each backdrop takes the bounds of its members, with room for its title bar.
void refit(const Backdrops &backdrops, OssUndoManager::AutoMacro &macro)
{
    for (const auto &entry : backdrops) {
        OssNgBackdropNode *backdrop = entry.first;
        if (entry.second.isEmpty())
            continue;
        QRectF bounds;
        for (OssNgNode *member : entry.second)
            bounds |= member->sceneBoundingRect();
        const qreal margin = backdrop->titleBarHeight();
        bounds.adjust(-margin, -2 * margin, margin, margin);
        backdrop->savePosition();
        backdrop->saveBoundingRect();
        // The members are placed already: the backdrop moves alone.
        backdrop->setRect(QRectF(bounds.topLeft() - backdrop->pos(), backdrop->nodeSize()));
        macro.addUndo(new OssNgNodePositionChangeUndo(backdrop), false);
        backdrop->setNodeSize(bounds.size());
        macro.addUndo(new OssNgBackdropNodeRectChangeUndo(backdrop), false);
    }
}

} // namespace

void OssSnAutoplace::run(OssShaderNetwork *network, QGraphicsScene *scene,
                         QList<OssSnBaseNode *> roots, bool fromLeavesIfEmpty)
{
    if (!network || (roots.isEmpty() && !fromLeavesIfEmpty))
        return;
    const QList<OssSnBaseNode *> networkNodes = network->nodes();
    const Backdrops backdrops = backdropsWithMembers(networkNodes);
    if (roots.isEmpty())
        roots = leaves(networkNodes);
    if (roots.isEmpty()) {
        OSS_DEBUG("[ !! ] Nothing to autoplace.");
        return;
    }
    OssUndoManager::AutoMacro macro(QStringLiteral("Layout Nodes"));
    // Edges are adjusted once, after every node has its place (and before the index is back).
    auto deferEdges = std::make_unique<OssNgNode::DeferEdgeUpdates>();
    // Moving thousands of items is quadratic with a tree index (each move re-files the item);
    // the index is rebuilt once afterwards.
    const QGraphicsScene::ItemIndexMethod indexMethod =
        scene ? scene->itemIndexMethod() : QGraphicsScene::NoIndex;
    if (scene)
        scene->setItemIndexMethod(QGraphicsScene::NoIndex);
    QSet<OssSnBaseNode *> placed;
    // Trees placed earlier stay clear of later ones.
    QList<OssNgNode *> keepClear;
    for (OssSnBaseNode *root : qAsConst(roots)) {
        if (placed.contains(root))
            continue;
        placeTree(root, placed, keepClear);
        keepClear.clear();
        for (OssSnBaseNode *done : qAsConst(placed))
            if (OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(done))
                keepClear.append(gui);
    }
    refit(backdrops, macro);
    deferEdges.reset();
    if (scene && indexMethod == QGraphicsScene::BspTreeIndex)
        OssNgView::useSpatialIndex(scene);
}

void OssSnAutoplace::placeTree(OssSnBaseNode *root, QSet<OssSnBaseNode *> &placed,
                               const QList<OssNgNode *> &keepClear)
{
    // Columns by longest path from the root: a node reached again deeper moves to the deeper
    // column.
    QVector<QVector<PlaceEntry>> columns{{PlaceEntry{root, nullptr, QString()}}};
    QHash<OssSnBaseNode *, int> columnOf{{root, 0}};
    for (int c = 0; c < columns.size(); ++c) {
        const QVector<PlaceEntry> column = columns.at(c);
        for (const PlaceEntry &entry : column) {
            OssSnBaseNode *node = entry.node;
            if (!node || columnOf.value(node, -1) != c)
                continue;
            for (const QString &input : node->inputNames()) {
                if (node->hasTag(ViewerTag) && input == QLatin1String("ToView"))
                    continue;
                if (node->hasInputTag(input, QStringLiteral("_hidden")))
                    continue;
                OssSnBaseNode *source = node->inputConnection(input);
                if (!source || source == root)
                    continue;
                const int existing = columnOf.value(source, -1);
                if (existing >= c + 1)
                    continue;
                if (existing >= 0) {
                    QVector<PlaceEntry> &old = columns[existing];
                    for (int i = 0; i < old.size(); ++i)
                        if (old.at(i).node == source) {
                            old.remove(i);
                            break;
                        }
                }
                if (columns.size() <= c + 1)
                    columns.append(QVector<PlaceEntry>());
                columns[c + 1].append(PlaceEntry{source, node, input});
                columnOf.insert(source, c + 1);
            }
        }
    }
    while (!columns.isEmpty()) {
        bool live = false;
        for (const PlaceEntry &entry : columns.last())
            live = live || entry.node;
        if (live)
            break;
        columns.removeLast();
    }
    QVector<qreal> widths;
    for (const QVector<PlaceEntry> &column : qAsConst(columns)) {
        qreal width = 0.0;
        for (const PlaceEntry &entry : column)
            if (OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(entry.node))
                width = qMax(width, gui->sceneBoundingRect().width());
        widths.append(width);
    }
    OssNgNode *rootGui = OssSnNodeGraphViewContext::guiNodeOf(root);
    const QPointF anchor = rootGui ? rootGui->scenePos() : QPointF();
    qreal offsetX = 0.0;
    for (int c = 0; c < columns.size(); ++c) {
        qreal cursor = 0.0;
        QRectF columnRect;
        QList<OssNgNode *> moved;
        for (const PlaceEntry &entry : qAsConst(columns.at(c))) {
            if (!entry.node)
                continue;
            placed.insert(entry.node);
            OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(entry.node);
            if (!gui)
                continue;
            const QRectF bounds = gui->sceneBoundingRect();
            const qreal x = widths.at(c) * 0.5 + offsetX - bounds.width() * 0.5;
            qreal y = cursor;
            if (entry.node != root) {
                qreal downstreamY = 0.0;
                if (OssNgNode *down = OssSnNodeGraphViewContext::guiNodeOf(entry.downstream)) {
                    downstreamY = down->scenePos().y();
                    if (OssLayerStreamUtils::isMergeNode(entry.downstream) &&
                        !OssLayerStreamUtils::isBaseInput(entry.downstream, entry.input))
                        downstreamY = down->inputPortScenePos(entry.input).y();
                }
                y = qMax(cursor, downstreamY - anchor.y());
            }
            gui->savePosition();
            gui->setPos(anchor.x() + x, anchor.y() + y);
            OssUndoManager::instance()->addUndo(new OssNgNodePositionChangeUndo(gui), false);
            columnRect = columnRect.isNull() ? gui->sceneBoundingRect()
                                             : columnRect.united(gui->sceneBoundingRect());
            cursor = y + bounds.height() + RowGap;
            moved.append(gui);
        }
        qreal shift = 0.0;
        if (!keepClear.isEmpty() && !columnRect.isNull()) {
            QRectF test = columnRect;
            bool again = true;
            while (again) {
                again = false;
                test.translate(shift, 0);
                for (OssNgNode *item : keepClear) {
                    if (moved.contains(item))
                        continue;
                    const QRectF other = item->sceneBoundingRect();
                    if (other.intersects(test)) {
                        shift = qMin(shift, other.left() - test.right() - Clearance);
                        again = true;
                    }
                }
            }
            shift = test.left() - columnRect.left();
        }
        if (shift != 0.0)
            for (OssNgNode *gui : qAsConst(moved)) {
                const QPointF from = gui->pos();
                gui->setPos(from.x() + shift, from.y());
                OssUndoManager::instance()->addUndo(
                    new OssNgNodePositionChangeUndo(gui, from, gui->pos()), false);
            }
        offsetX = offsetX - widths.value(c + 1) - ColumnGap + shift;
    }
}
