#include "NodeGraphView.h"

#include "OssShaderNetworkView.h"
#include "OssSnScriptObjects.h"

#include <OssScriptManager.h>
#include <OssShaderNetwork.h>

namespace Ossa {

NodeGraphView::NodeGraphView(QObject *InternalObject)
{
    if (!qobject_cast<QGraphicsView *>(InternalObject)) {
        OssScriptError(OssScriptException::ObjectUnavailable, __FILE__, __LINE__,
                       "Invalid QGraphicsView object passed to %s().",
                       "Ossa::NodeGraphView::NodeGraphView");
        return;
    }
    initAPI(InternalObject);
}

NodeGraphView::~NodeGraphView() = default;

OssShaderNetworkView *NodeGraphView::view(const char *file, int line)
{
    auto *graphicsView = qobject_cast<QGraphicsView *>(internalObject());
    if (!graphicsView) {
        OssScriptError(OssScriptException::ObjectNotValid, file, line,
                       "Internal QGraphicsView object not valid");
        return nullptr;
    }
    // A name comparison, as for the palette's body.
    if (qstrcmp(graphicsView->metaObject()->className(), "OssShaderNetworkView") != 0) {
        OssScriptError(OssScriptException::ObjectUnavailable, file, line,
                       "Cannot obtain the Node Graph view");
        return nullptr;
    }
    return static_cast<OssShaderNetworkView *>(graphicsView);
}

NodeGraph *NodeGraphView::nodeGraph()
{
    OssShaderNetworkView *graphView = view(__FILE__, __LINE__);
    if (!graphView)
        return nullptr;
    return static_cast<NodeGraph *>(
        OssSnScriptObjects::scriptObjectFor(graphView->network(), "Ossa::NodeGraph"));
}

float NodeGraphView::zoomLevel()
{
    OssShaderNetworkView *graphView = view(__FILE__, __LINE__);
    if (!graphView)
        return 0;
    return static_cast<float>(graphView->transform().mapRect(QRectF(0, 0, 1, 1)).width());
}

void NodeGraphView::setZoomLevel(float ZoomLevel)
{
    OssShaderNetworkView *graphView = view(__FILE__, __LINE__);
    if (!graphView)
        return;
    const double current = graphView->transform().mapRect(QRectF(0, 0, 1, 1)).width();
    // Back to scale 1, then to the level asked for, both about the view's centre.
    graphView->zoomOut(current, QGraphicsView::AnchorViewCenter);
    graphView->zoomIn(ZoomLevel, QGraphicsView::AnchorViewCenter);
}

QPointF NodeGraphView::center()
{
    OssShaderNetworkView *graphView = view(__FILE__, __LINE__);
    if (!graphView)
        return QPointF(0, 0);
    return graphView->mapToScene(graphView->width() / 2, graphView->height() / 2);
}

void NodeGraphView::setCenter(QPointF Center)
{
    if (OssShaderNetworkView *graphView = view(__FILE__, __LINE__))
        graphView->centerOn(Center);
}

QPointF NodeGraphView::posFromGlobalPos(QPoint GlobalPos)
{
    OssShaderNetworkView *graphView = view(__FILE__, __LINE__);
    if (!graphView)
        return QPointF(0, 0);
    return graphView->mapToScene(graphView->mapFromGlobal(GlobalPos));
}

} // namespace Ossa
