#include "NodeGraphPalette.h"

#include "NodeGraphView.h"
#include "OssShaderNetworkView.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnNodeGraphWidget.h"
#include "OssSnScriptObjects.h"

#include <OssPalette.h>
#include <OssScriptManager.h>
#include <OssShaderNetwork.h>
#include <OssSnGroupNode.h>

namespace Ossa {

namespace {

// The first tab, from 0 upward, whose view shows Network; -1 when none does.
int tabOfNetwork(const OssSnNodeGraphWidget *widget, const OssShaderNetwork *network)
{
    for (int i = 0; i < widget->count(); ++i) {
        auto *tabView = qobject_cast<OssShaderNetworkView *>(widget->widget(i));
        if (tabView && tabView->network() == network)
            return i;
    }
    return -1;
}

} // namespace

NodeGraphPalette::NodeGraphPalette(QObject *InternalObject)
{
    if (!qobject_cast<OssPalette *>(InternalObject)) {
        OssScriptError(OssScriptException::ObjectUnavailable, __FILE__, __LINE__,
                       "Invalid OssPalette object passed to %s().",
                       "Ossa::NodeGraphPalette::NodeGraphPalette");
        return;
    }
    initAPI(InternalObject);
}

NodeGraphPalette::~NodeGraphPalette() = default;

OssSnNodeGraphWidget *NodeGraphPalette::tabWidget(const char *file, int line)
{
    auto *palette = qobject_cast<OssPalette *>(internalObject());
    if (!palette) {
        OssScriptError(OssScriptException::ObjectNotValid, file, line,
                       "Internal OssPalette object not valid");
        return nullptr;
    }
    // A name comparison: the body is only known to be the tab widget by its class name.
    QWidget *body = palette->originalWidget();
    if (!body || qstrcmp(body->metaObject()->className(), "OssSnNodeGraphWidget") != 0) {
        OssScriptError(OssScriptException::ObjectUnavailable, file, line,
                       "Cannot obtain the Node Graph widget");
        return nullptr;
    }
    return static_cast<OssSnNodeGraphWidget *>(body);
}

NodeGraphView *NodeGraphPalette::viewObject(OssSnNodeGraphWidget *widget, int Index)
{
    return static_cast<NodeGraphView *>(
        OssSnScriptObjects::scriptObjectFor(widget->widget(Index), "Ossa::NodeGraphView"));
}

int NodeGraphPalette::currentTabIndex()
{
    OssSnNodeGraphWidget *widget = tabWidget(__FILE__, __LINE__);
    return widget ? widget->currentIndex() : -1;
}

void NodeGraphPalette::setCurrentTabIndex(int Index)
{
    OssSnNodeGraphWidget *widget = tabWidget(__FILE__, __LINE__);
    if (!widget)
        return;
    if (Index < 0) {
        OssScriptError(OssScriptException::OutOfRange, __FILE__, __LINE__,
                       "CurrentTabIndex cannot be a negative number");
        return;
    }
    if (Index >= widget->count()) {
        OssScriptError(OssScriptException::OutOfRange, __FILE__, __LINE__,
                       "CurrentTabIndex cannot be larger than or equal to the number of open tabs");
        return;
    }
    widget->setCurrentIndex(Index);
}

void NodeGraphPalette::closeTab(int Index)
{
    if (OssSnNodeGraphWidget *widget = tabWidget(__FILE__, __LINE__))
        widget->hideTab(Index);
}

QList<NodeGraphView *> NodeGraphPalette::nodeGraphViewList()
{
    QList<NodeGraphView *> views;
    OssSnNodeGraphWidget *widget = tabWidget(__FILE__, __LINE__);
    if (!widget)
        return views;
    for (int i = 0; i < widget->count(); ++i)
        if (NodeGraphView *view = viewObject(widget, i))
            views.append(view);
    return views;
}

NodeGraphView *NodeGraphPalette::nodeGraphView(int TabIndex)
{
    OssSnNodeGraphWidget *widget = tabWidget(__FILE__, __LINE__);
    if (!widget || !widget->widget(TabIndex))
        return nullptr;
    return viewObject(widget, TabIndex);
}

int NodeGraphPalette::indexForNodeGraph(NodeGraph *NodeGraphObject)
{
    OssSnNodeGraphWidget *widget = tabWidget(__FILE__, __LINE__);
    if (!widget)
        return -1;
    auto *network = NodeGraphObject
                        ? qobject_cast<OssShaderNetwork *>(NodeGraphObject->internalObject())
                        : nullptr;
    if (!network) {
        OssScriptError(OssScriptException::ObjectUnavailable, __FILE__, __LINE__,
                       "Cannot obtain the Shader Network object");
        return -1;
    }
    int index = tabOfNetwork(widget, network);
    if (index >= 0)
        return index;
    if (network->rootNetwork() != network) {
        // A group's closed tab comes back at the end, behind the current one.
        OssSnGroupNode *group = network->parentGroupNode();
        auto *context = group ? qobject_cast<OssSnGroupNodeGraphViewContext *>(
                                    group->context(QStringLiteral("NodeGraphView")))
                              : nullptr;
        if (context)
            context->addTabToWidget(group);
    } else {
        widget->addRootView();
    }
    index = tabOfNetwork(widget, network);
    if (index < 0)
        OssScriptError(OssScriptException::ObjectUnavailable, __FILE__, __LINE__,
                       "Cannot create a NodeGraphView");
    return index;
}

} // namespace Ossa
