#include "OssSnNodePropertiesWidget.h"

#include "OssShaderNetworkView.h"

#include <OssSerializer.h>
#include <OssSnBaseNode.h>

#include <QHeaderView>
#include <QTreeWidget>
#include <QVBoxLayout>

OssSnNodePropertiesWidget::OssSnNodePropertiesWidget(OssShaderNetworkView *view, QWidget *parent)
    : QWidget(parent), m_view(view)
{
    m_tree = new QTreeWidget(this);
    m_tree->setHeaderLabels({tr("Property"), tr("Value")});
    m_tree->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_tree);
    connect(m_tree, &QTreeWidget::itemDoubleClicked, this,
            &OssSnNodePropertiesWidget::nodeDoubledClicked);
}

QList<OssSnBaseNode *> OssSnNodePropertiesWidget::shownNodes() const
{
    QList<OssSnBaseNode *> nodes;
    for (const QPointer<OssSnBaseNode> &node : m_nodes)
        if (node)
            nodes.append(node);
    return nodes;
}

void OssSnNodePropertiesWidget::insertAt(int index, OssSnBaseNode *node)
{
    if (!node)
        return;
    for (int i = m_nodes.size() - 1; i >= 0; --i)
        if (m_nodes.at(i) == node || !m_nodes.at(i))
            m_nodes.removeAt(i);
    m_nodes.insert(qBound(0, index, m_nodes.size()), node);
    connect(node, &OssSnBaseNode::nodeAttributeChanged, this, &OssSnNodePropertiesWidget::refresh,
            Qt::UniqueConnection);
    connect(node, &OssSnBaseNode::nameChanged, this, &OssSnNodePropertiesWidget::refresh,
            Qt::UniqueConnection);
    connect(node, &QObject::destroyed, this, &OssSnNodePropertiesWidget::refresh,
            Qt::UniqueConnection);
    refresh();
}

void OssSnNodePropertiesWidget::showNodeProperties(OssSnBaseNode *node)
{
    insertAt(0, node);
}

void OssSnNodePropertiesWidget::showNodePropertiesAtPositionEnd(OssSnBaseNode *node,
                                                                OssSnBaseNode *target, bool)
{
    const int at = m_nodes.indexOf(target);
    insertAt(at < 0 ? m_nodes.size() : at + 1, node);
}

void OssSnNodePropertiesWidget::showNodePropertiesAtPositionBegin(OssSnBaseNode *node,
                                                                  OssSnBaseNode *target, bool)
{
    const int at = m_nodes.indexOf(target);
    insertAt(at < 0 ? 0 : at, node);
}

void OssSnNodePropertiesWidget::refresh()
{
    m_tree->clear();
    for (OssSnBaseNode *node : shownNodes()) {
        auto *top = new QTreeWidgetItem(m_tree, {node->name(), node->pathKey()});
        for (const OssCustomAttribute &attribute : node->nodeAttributes())
            if (attribute.isVisible())
                new QTreeWidgetItem(
                    top, {attribute.prettyName(), OssSerializer::variantToText(attribute.value())});
        top->setExpanded(true);
    }
}
