#include "OssNgNodeState.h"

#include "OssNgNode.h"

OssNgNodeState::OssNgNodeState(OssNgNode *node) : OssSerializableObject(node), m_node(node)
{
    setObjectName(QStringLiteral("m_GuiNode"));
}

QPointF OssNgNodeState::position() const
{
    return m_node->pos();
}

void OssNgNodeState::setPosition(const QPointF &position)
{
    m_node->setPos(position);
}

QSizeF OssNgNodeState::size() const
{
    return m_node->nodeSize();
}

void OssNgNodeState::setSize(const QSizeF &size)
{
    if (size.isValid() && !size.isEmpty())
        m_node->setNodeSize(size);
}

int OssNgNodeState::portListMode() const
{
    return m_node->property("portListMode").isValid() ? m_node->property("portListMode").toInt()
                                                      : 0;
}

void OssNgNodeState::setPortListMode(int mode)
{
    // Only nodes with port-list modes have the property.
    if (m_node->metaObject()->indexOfProperty("portListMode") >= 0)
        m_node->setProperty("portListMode", mode);
}

bool OssNgNodeState::portsVisible() const
{
    return m_node->portsVisible();
}

void OssNgNodeState::setPortsVisible(bool visible)
{
    m_node->setPortsVisible(visible);
}

double OssNgNodeState::zValue() const
{
    return m_node->zValue();
}

void OssNgNodeState::setZValue(double z)
{
    m_node->setZValue(z);
}

QRectF OssNgNodeState::rect() const
{
    return QRectF(QPointF(0, 0), m_node->nodeSize());
}

void OssNgNodeState::setRect(const QRectF &rect)
{
    if (rect.isValid() && !rect.isEmpty())
        m_node->setNodeSize(rect.size());
}
