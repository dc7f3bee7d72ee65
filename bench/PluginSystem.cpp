#include "BenchSystem.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssSnNodeGraphWidget.h"

#include <OssNgNode.h>
#include <OssProject.h>
#include <OssProjectManager.h>
#include <OssShaderNetwork.h>
#include <OssSnBaseNode.h>

#include <QGraphicsScene>

// The whole system: nodes made in the host's network from their types, view contexts and GUI
// nodes made by the plug-in, shown by the plug-in's root view.
PluginSystem::PluginSystem() = default;

PluginSystem::~PluginSystem()
{
    tearDown();
}

void PluginSystem::build(const BenchGraph &graph)
{
    tearDown();
    OssSnNodeGraphViewContextManager *manager = OssSnNodeGraphViewContextManager::instance();
    OssSnNodeGraphWidget *widget = manager->nodeGraphWidget();
    // The palette is shown like the shell's dock, its view 1920 x 1080 as the baseline's.
    widget->window()->resize(1920, 1080 + 40);
    widget->window()->show();
    m_network = OssProjectManager::instance()->newProject()->networks().first();
    m_nodes.clear();
    m_nodes.reserve(graph.nodes.size());
    for (const BenchGraph::Node &spec : graph.nodes) {
        QString key = QStringLiteral("Math/Add");
        if (spec.kind == BenchGraph::Kind::ChannelInput)
            key = QStringLiteral("Misc/Channel Input");
        else if (spec.kind == BenchGraph::Kind::Merge)
            key = QStringLiteral("Layer/Merge");
        else if (spec.kind == BenchGraph::Kind::Backdrop)
            key = QStringLiteral("Misc/Backdrop");
        OssSnBaseNode *node = m_network->createNode(key, QString(), false);
        if (OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(node))
            gui->setPos(spec.position);
        m_nodes.append(node);
    }
    for (const BenchGraph::Edge &edge : graph.edges) {
        OssSnBaseNode *target = m_nodes[edge.to];
        const QStringList inputs = target->inputNames();
        if (inputs.isEmpty())
            continue;
        target->connectInput(inputs.at(edge.input % inputs.size()), m_nodes[edge.from],
                             m_nodes[edge.from]->prefferedOutputPoint(), false);
    }
}

void PluginSystem::tearDown()
{
    m_nodes.clear();
    m_network = nullptr;
    OssProjectManager::instance()->closeProject();
}

QGraphicsScene *PluginSystem::scene() const
{
    return view() ? view()->scene() : nullptr;
}

QGraphicsView *PluginSystem::view() const
{
    OssSnNodeGraphWidget *widget = OssSnNodeGraphViewContextManager::instance()->nodeGraphWidget();
    return widget ? widget->view() : nullptr;
}

QPointF PluginSystem::nodeCenter(int index) const
{
    OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(m_nodes.value(index));
    return gui ? gui->sceneBoundingRect().center() : QPointF();
}

void PluginSystem::selectNodes(int count)
{
    if (scene())
        scene()->clearSelection();
    for (int i = 0; i < qMin(count, m_nodes.size()); ++i)
        m_nodes[i]->setSelected(true);
}
