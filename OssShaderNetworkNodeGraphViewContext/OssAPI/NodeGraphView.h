#pragma once

#include <OssaAPI.h>

#include <QPoint>
#include <QPointF>

class OssShaderNetworkView;

namespace Ossa {

// Script object of one node graph view: the network it shows, its zoom and its centre.
class NodeGraphView : public API
{
    Q_OBJECT
public:
    explicit NodeGraphView(QObject *InternalObject);
    ~NodeGraphView() override;

public slots:
    Ossa::NodeGraph *nodeGraph();
    float zoomLevel();
    void setZoomLevel(float ZoomLevel);
    QPointF center();
    void setCenter(QPointF Center);
    QPointF posFromGlobalPos(QPoint GlobalPos);

private:
    // The wrapped view, or null after reporting why there is none.
    OssShaderNetworkView *view(const char *file, int line);
};

} // namespace Ossa
