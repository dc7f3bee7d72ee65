#include "OssShaderNetworkUtils.h"

#include "OssChannel.h"
#include "OssImageSetUtils.h"
#include "OssShaderNetwork.h"
#include "OssShaderNetworkManager.h"
#include "OssShadingGroup.h"
#include "OssSnBakePointNode.h"
#include "OssSnGroupNode.h"
#include "OssSnImageSetNodeBase.h"

#include <OssDebug.h>
#include <OssUndoCommand.h>
#include <OssUndoManager.h>

#include <QPointer>
#include <QSet>

bool OssShaderNetworkUtils::OssNodeWalkerUpstream::followInput(OssSnBaseNode *, const QString &)
{
    return true;
}

void OssShaderNetworkUtils::OssNodeWalkerUpstream::walk(OssSnBaseNode *start)
{
    if (!start)
        return;
    QSet<OssSnBaseNode *> seen;
    QList<OssSnBaseNode *> stack{start};
    while (!stack.isEmpty()) {
        OssSnBaseNode *node = stack.takeLast();
        if (seen.contains(node))
            continue;
        seen.insert(node);
        if (!visit(node))
            return;
        const QStringList inputs = node->inputNames();
        // Reverse so that the first input is walked first.
        for (int i = inputs.size() - 1; i >= 0; --i) {
            OssSnBaseNode *source = node->inputConnection(inputs.at(i));
            if (source && !seen.contains(source) && followInput(node, inputs.at(i)))
                stack.append(source);
        }
    }
}

bool OssShaderNetworkUtils::OssNodeWalkerDownstream::followConnection(OssSnBaseNode *node,
                                                                      const QString &outputPoint,
                                                                      OssSnBaseNode *,
                                                                      const QString &)
{
    return outputPoint == node->prefferedOutputPoint();
}

void OssShaderNetworkUtils::OssNodeWalkerDownstream::walk(OssSnBaseNode *start)
{
    if (!start)
        return;
    QSet<OssSnBaseNode *> seen;
    QList<OssSnBaseNode *> queue{start};
    while (!queue.isEmpty()) {
        OssSnBaseNode *node = queue.takeFirst();
        if (seen.contains(node))
            continue;
        seen.insert(node);
        if (!visit(node))
            return;
        for (const OssSnOutputLink &link : node->outputLinks())
            if (link.target && !seen.contains(link.target.data()) &&
                followConnection(node, link.outputPoint, link.target, link.input))
                queue.append(link.target.data());
    }
}

OssSnBakePointNode *OssShaderNetworkUtils::asTrueBakePointNode(OssSnBaseNode *node)
{
    return qobject_cast<OssSnBakePointNode *>(node);
}

OssSnImageSetNodeBase *OssShaderNetworkUtils::asTrueImageSetNode(OssSnBaseNode *node)
{
    return qobject_cast<OssSnImageSetNodeBase *>(node);
}

QList<OssSnBaseNode *> OssShaderNetworkUtils::getUpstreamNodes(OssSnBaseNode *node,
                                                               bool excludeStart, bool wholeGraph,
                                                               bool enterGroups)
{
    class Collector : public OssNodeWalkerUpstream
    {
    public:
        bool whole = true;
        QList<OssSnBaseNode *> found;

    protected:
        bool visit(OssSnBaseNode *visited) override
        {
            found.append(visited);
            return true;
        }
        bool followInput(OssSnBaseNode *at, const QString &input) override
        {
            if (whole)
                return true;
            const QString main =
                at->preferredInput().isEmpty() ? at->inputNames().value(0) : at->preferredInput();
            return input == main;
        }
    } collector;
    collector.whole = wholeGraph;
    collector.walk(node);
    QList<OssSnBaseNode *> result = collector.found;
    if (excludeStart)
        result.removeAll(node);
    if (enterGroups) {
        const QList<OssSnBaseNode *> outer = result;
        for (OssSnBaseNode *found : outer)
            if (auto *group = qobject_cast<OssSnGroupNode *>(found))
                for (OssSnBaseNode *inner : group->groupNetwork()->getAllNodes())
                    if (!result.contains(inner))
                        result.append(inner);
    }
    return result;
}

QList<OssSnBaseNode *> OssShaderNetworkUtils::getDownstreamNodes(OssSnBaseNode *node,
                                                                 bool excludeStart, bool wholeGraph)
{
    class Collector : public OssNodeWalkerDownstream
    {
    public:
        bool whole = true;
        QList<OssSnBaseNode *> found;

    protected:
        bool visit(OssSnBaseNode *visited) override
        {
            found.append(visited);
            return true;
        }
        bool followConnection(OssSnBaseNode *, const QString &, OssSnBaseNode *target,
                              const QString &input) override
        {
            if (whole)
                return true;
            const QString main = target->preferredInput().isEmpty() ? target->inputNames().value(0)
                                                                    : target->preferredInput();
            return input == main;
        }
    } collector;
    collector.whole = wholeGraph;
    collector.walk(node);
    QList<OssSnBaseNode *> result = collector.found;
    if (excludeStart)
        result.removeAll(node);
    return result;
}

namespace {

// The node fed by Node first, and the sources of that node's inputs, in input order.
QList<OssSnBaseNode *> siblingsOf(OssSnBaseNode *node)
{
    const QVector<OssSnOutputLink> links = node->outputLinks();
    for (const OssSnOutputLink &link : links) {
        if (!link.target)
            continue;
        QList<OssSnBaseNode *> siblings;
        for (OssSnBaseNode *source : link.target->inputNodes())
            if (source && !siblings.contains(source))
                siblings.append(source);
        return siblings;
    }
    return {};
}

} // namespace

OssSnBaseNode *OssShaderNetworkUtils::nextSibling(OssSnBaseNode *node)
{
    const QList<OssSnBaseNode *> siblings = siblingsOf(node);
    const int index = siblings.indexOf(node);
    return index >= 0 && index + 1 < siblings.size() ? siblings.at(index + 1) : nullptr;
}

OssSnBaseNode *OssShaderNetworkUtils::prevSibling(OssSnBaseNode *node)
{
    const QList<OssSnBaseNode *> siblings = siblingsOf(node);
    const int index = siblings.indexOf(node);
    return index > 0 ? siblings.at(index - 1) : nullptr;
}

QList<OssSnBaseNode *> OssShaderNetworkUtils::nodesBetween(const QList<OssSnBaseNode *> &nodes)
{
    QList<OssSnBaseNode *> result;
    if (nodes.size() < 2)
        return result;
    QSet<OssSnBaseNode *> downstreamOfAny;
    QSet<OssSnBaseNode *> upstreamOfAny;
    for (OssSnBaseNode *node : nodes) {
        for (OssSnBaseNode *down : getDownstreamNodes(node, true, true))
            downstreamOfAny.insert(down);
        for (OssSnBaseNode *up : getUpstreamNodes(node, true, true, false))
            upstreamOfAny.insert(up);
    }
    const QSet<OssSnBaseNode *> given(nodes.begin(), nodes.end());
    for (OssSnBaseNode *node : nodes.first()->network()->nodes())
        if (!given.contains(node) && downstreamOfAny.contains(node) && upstreamOfAny.contains(node))
            result.append(node);
    return result;
}

QList<OssSnBaseNode *>
OssShaderNetworkUtils::getUpstreamBakePointNodes(const QList<OssSnBaseNode *> &nodes)
{
    QList<OssSnBaseNode *> result;
    for (OssSnBaseNode *node : nodes)
        for (OssSnBaseNode *up : getUpstreamNodes(node, true, true, false))
            if (asTrueBakePointNode(up) && !result.contains(up))
                result.append(up);
    return result;
}

QList<OssSnBaseNode *>
OssShaderNetworkUtils::getDownstreamBakePointNodes(const QList<OssSnBaseNode *> &nodes)
{
    QList<OssSnBaseNode *> result;
    for (OssSnBaseNode *node : nodes)
        for (OssSnBaseNode *down : getDownstreamNodes(node, true, true))
            if (asTrueBakePointNode(down) && !result.contains(down))
                result.append(down);
    return result;
}

namespace {

// A bake of a bake point: the recorded state of its bake (the graph it baked and the image set
// it baked into) before and after.
class BakeCommand : public OssUndoCommand
{
public:
    BakeCommand(OssSnBakePointNode *bakePoint, const QString &imageSet)
        : OssUndoCommand(QStringLiteral("Bake %1").arg(bakePoint->name())), m_bakePoint(bakePoint),
          m_oldSignature(bakePoint->bakedSignature()), m_oldImageSet(bakePoint->bakedImageSet()),
          m_imageSet(imageSet)
    {}
    void redo() override
    {
        if (m_bakePoint)
            m_bakePoint->bake(m_imageSet);
    }
    void undo() override
    {
        if (!m_bakePoint)
            return;
        m_bakePoint->setBakedSignature(m_oldSignature);
        m_bakePoint->setBakedImageSet(m_oldImageSet);
        emit m_bakePoint->bakedStateChanged();
        m_bakePoint->emitNodeStateRefreshed();
    }

private:
    QPointer<OssSnBakePointNode> m_bakePoint;
    QString m_oldSignature;
    QString m_oldImageSet;
    QString m_imageSet;
};

// Bakes into the image set "Node_Bake_<name>" of the shading group, made when missing: the
// stand-in renderer writes the digest of the graph upstream, so a changed graph shows as a
// bake out of date. One undo step each.
void bakeBakePoint(OssSnBakePointNode *bakePoint)
{
    const QString name = QStringLiteral("Node_Bake_") + bakePoint->name();
    OssUndoManager::AutoMacro macro(QStringLiteral("Bake %1").arg(bakePoint->name()));
    OssUndoManager::instance()->addUndo(new BakeCommand(bakePoint, name));
    OssShaderNetwork *network = bakePoint->network();
    if (OssChannel *imageSet =
            OssImageSetUtils::imageSetNamed(network ? network->shadingGroup() : nullptr, name))
        OssImageSetUtils::writeContent(imageSet, bakePoint->bakedSignature());
}

} // namespace

int OssShaderNetworkUtils::bakeBakePoints(const QList<OssSnBaseNode *> &nodes, bool bake,
                                          bool includeUpToDate)
{
    // Bake upstream bake points before those that read them.
    QList<OssSnBakePointNode *> ordered;
    for (OssSnBaseNode *node : nodes) {
        for (OssSnBaseNode *up : getUpstreamBakePointNodes({node}))
            if (nodes.contains(up) && !ordered.contains(asTrueBakePointNode(up)))
                ordered.append(asTrueBakePointNode(up));
        if (OssSnBakePointNode *bakePoint = asTrueBakePointNode(node))
            if (!ordered.contains(bakePoint))
                ordered.append(bakePoint);
    }
    int baked = 0;
    for (OssSnBakePointNode *bakePoint : qAsConst(ordered)) {
        const bool stale = !bakePoint->isBakedResultUpToDate(false);
        if (!bake && !bakePoint->hasBakedResult())
            continue;
        if (!stale && !includeUpToDate)
            continue;
        bakeBakePoint(bakePoint);
        ++baked;
    }
    return baked;
}

bool OssShaderNetworkUtils::setInputNodeBatchConnectable(OssSnBaseNode *node,
                                                         const QString &inputName,
                                                         OssSnBaseNode *source,
                                                         const QString &outputPoint, bool undoable,
                                                         bool notify, bool, bool)
{
    if (!node)
        return false;
    OssUndoManager::AutoMacro macro(QStringLiteral("Connect %1").arg(inputName));
    const bool connected = node->connectInput(inputName, source, outputPoint, undoable);
    if (connected && notify)
        OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
    return connected;
}

int OssShaderNetworkUtils::batchConnect(const QList<OssSnBaseNode *> &sources,
                                        OssSnBaseNode *target, bool undoable)
{
    if (!target)
        return 0;
    OssUndoManager::AutoMacro macro(QStringLiteral("Connect Shaders"));
    int made = 0;
    for (OssSnBaseNode *source : sources) {
        if (!source || source == target)
            continue;
        const QString output = source->prefferedOutputPoint();
        if (output.isEmpty())
            continue;
        QString input;
        if (target->hasInput(output) && !target->inputConnection(output))
            input = output;
        for (const QString &candidate : target->inputNames()) {
            if (!input.isEmpty())
                break;
            if (!target->inputConnection(candidate) &&
                target->connectionRefusal(candidate, source, output).isEmpty())
                input = candidate;
        }
        if (!input.isEmpty() && target->connectInput(input, source, output, undoable))
            ++made;
    }
    return made;
}
