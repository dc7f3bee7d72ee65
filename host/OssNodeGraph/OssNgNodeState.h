#pragma once

#include "OssNodeGraphExport.h"

#include <OssSerializableObject.h>

#include <QPointF>
#include <QRectF>
#include <QSizeF>

class OssNgNode;

// The saved GUI state of a node: what a project keeps of it.
class OSSNODEGRAPH_EXPORT OssNgNodeState : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(QPointF position READ position WRITE setPosition)
    Q_PROPERTY(QSizeF size READ size WRITE setSize)
    Q_PROPERTY(int portListMode READ portListMode WRITE setPortListMode)
    Q_PROPERTY(bool portsVisible READ portsVisible WRITE setPortsVisible)
    Q_PROPERTY(double zValue READ zValue WRITE setZValue)
    Q_PROPERTY(QRectF rect READ rect WRITE setRect)
public:
    explicit OssNgNodeState(OssNgNode *node);
    QPointF position() const;
    void setPosition(const QPointF &position);
    QSizeF size() const;
    void setSize(const QSizeF &size);
    int portListMode() const;
    void setPortListMode(int mode);
    bool portsVisible() const;
    void setPortsVisible(bool visible);
    double zValue() const;
    void setZValue(double z);
    QRectF rect() const;
    void setRect(const QRectF &rect);

private:
    OssNgNode *m_node;
};
