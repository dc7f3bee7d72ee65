#pragma once

#include "OssSnInitialPositions.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <OssNgExtendedNode.h>
#include <OssSnBaseContext.h>
#include <OssSnBaseNode.h>

#include <QPoint>
#include <QPointF>
#include <QPointer>
#include <QSizeF>
#include <QVector>

class OssNgEdge;
class OssNgNode;
class OssShaderNetworkView;

// The view context of one shader-network node: it makes the node's GUI node, fills it from the
// business node, and keeps it in step with the node's signals for the node's whole life.
class OssSnNodeGraphViewContext : public OssSnBaseContext
{
    Q_OBJECT
    Q_PROPERTY(int shapeType READ shapeType WRITE setShapeType)
    Q_PROPERTY(QString nodeColorTop READ nodeColorTop WRITE setNodeColorTop)
    Q_PROPERTY(QString nodeColorBottom READ nodeColorBottom WRITE setNodeColorBottom)
    Q_PROPERTY(int portListMode READ portListModeAsInt WRITE setPortListMode)
    Q_PROPERTY(QString pixmapPath READ pixmapPath WRITE setPixmapPath)
    Q_PROPERTY(QPoint pixmapOffset READ pixmapOffset WRITE setPixmapOffset)
public:
    OssSnNodeGraphViewContext(QObject *parent, bool withGui = true);
    ~OssSnNodeGraphViewContext() override;

    // The view context of a node, or null.
    static OssSnNodeGraphViewContext *of(const OssSnBaseNode *node);
    // The GUI node of a node's view context, or null.
    static OssNgNode *guiNodeOf(const OssSnBaseNode *node);

    // The GUI node while it exists (a closing scene may have taken it), or null.
    OssNgNode *guiNode() const override { return m_guiNode.data(); }
    OssNgExtendedNode *extendedNode() const;

    int shapeType() const { return m_shapeType; }
    void setShapeType(int shapeType) { m_shapeType = shapeType; }
    QString nodeColorTop() const { return m_nodeColorTop; }
    void setNodeColorTop(const QString &color) { m_nodeColorTop = color; }
    QString nodeColorBottom() const { return m_nodeColorBottom; }
    void setNodeColorBottom(const QString &color) { m_nodeColorBottom = color; }
    QString pixmapPath() const { return m_pixmapPath; }
    void setPixmapPath(const QString &path) { m_pixmapPath = path; }
    QPoint pixmapOffset() const { return m_pixmapOffset; }
    void setPixmapOffset(const QPoint &offset) { m_pixmapOffset = offset; }

    OssSnInitialPositionMap m_inputNodeInitialPos;
    OssSnInitialPositionMap m_outputNodeInitialPos;

    // --- host virtuals
    bool saveObjects(OssSerializer &serializer) override;
    OssSerializableObject *onLoadSubObject(OssDeserializer &deserializer, const QString &name,
                                           const QString &type) override;
    void onLoadCollectionObject(const QString &name, const QString &type,
                                const QString &elementType, int index,
                                const OssStringMap &attributes) override;
    void onEndCollection(const QString &name, const QString &type,
                         const QString &elementType) override;
    bool onLoadCollection(const QString &name, const QString &type, const QString &elementType,
                          int count, const OssStringMap &attributes) override;
    void initializeGui() override;
    bool attributeIsStub(const QString &name, bool flag) const override;
    QString versionHashSource() const override;
    bool versionStateMatches() const override { return true; }
    void copyGuiStateFrom(OssSnBaseContext *other) override;
    void copyGuiNodeStateFrom(OssSnBaseContext *other) override;
    void connectInputFromGui(OssSnBaseNode *source, const QString &inputName,
                             const QString &outputPointName) override;
    void applySelection(bool selected) override;

    // Brings one input's GUI edge up to date with the business node.
    void refreshInputEdge(const QString &input);
    // Re-applies the port-list mode and which ports show.
    void applyPortVisibility();

    static void calculateEdgeMultipliers(QVector<int> &MultiplierList, int &MinMultiplier,
                                         int Count);

public slots:
    OssNgExtendedNode::PortListMode portListMode() const;
    int portListModeAsInt() const;
    void setPortListMode(OssNgExtendedNode::PortListMode mode);
    void setPortListMode(int mode);
    void resetPortListMode();
    void setPortListMode(OssSnNodeGraphViewContextManager::DefaultMCMCollapsedState state);
    QPointF nodePosition() const;
    QSizeF nodeSize() const;
    virtual void gotoNode();
    void setText(QString text) override;

signals:
    void portListModeChanged(OssNgExtendedNode::PortListMode mode);
    void hoveredChanged(bool Hovered);

protected slots:
    void updateGuiEdgesBypassStates();
    void cachedChanged();
    void setToolTip(QString text);
    void onGuiNodeInputChange(OssNgNode *newInput, QString inputName, QString outputPointName);
    void onGuiNodePosChanged(QPointF position);
    void onDotableMarkerClicked(OssNgEdge *edge);
    void onParentNodeInputChange(QString input, OssSnBaseNode *source, QString outputPoint);
    void onParentNodeDetachOutput(QString outputPoint);
    void onParentNodeInputAdded(QString input);
    void onParentNodeInputListAdded(QStringList inputs);
    void onParentNodeInputsRefreshed();
    void onParentNodeInputsRefreshed(bool Adjust);
    void onParentNodeOutputsRefreshed();
    void onParentNodeOutputsRefreshed(bool Adjust);
    void onParentNodeInputsOutputsRefreshed();
    void onParentNodeInputRenamed(QString oldName, QString newName);
    void onParentNodeInputRemoved(QString input);
    void onParentNodeOutputPointAdded(QString outputPoint);
    void onParentNodeOutputPointRemoved(QString outputPoint);
    void onParentNodeOutputPointUsed(QString outputPoint);
    void onParentNodeOutputPointFreed(QString outputPoint);
    void onParentNodeOutputPointRenamed(QString oldName, QString newName);
    void onParentNodeGuiActiveChanged(bool active);
    void onParentInputIsShared(QString input);
    void onInputEnabledChanged(QString input, bool enabled);
    void selectGuiNode(bool selected);
    void onGuiNodeSelectedChanged(bool selected);
    // Placement requests of the business node.
    void onSetLayout(OssSnBaseNode::NodeLayoutType Type, OssSnBaseNode *ReferenceNode,
                     bool FreshCoordinates, bool PreventOverlap);
    void onNodePositionedManual(OssSnBaseNode *ReferenceNode, QPointF Offset);
    void onNodePositionedUnderneath(OssSnBaseNode *ReferenceNode, int Factor);
    void onNodePositionedNextTo(OssSnBaseNode *ReferenceNode);
    void onNodePositionedOnTopIdented(OssSnBaseNode *ReferenceNode);
    void onNodeSyncedUnderneathNode(OssSnBaseNode *ReferenceNode,
                                    bool IgnoreContainerOfPreviousNode);
    void onUniformariseContainers(QList<OssSnBaseNode *> LayerListNode);
    void placeNode();
    void onUpdateSystemShaderStatus();
    void onViewerAttachedToNode(int InputNumber = 1);
    void onViewerNodeCurrentEdgeChanged(int edge);
    void updateViewerNodeVirtualEdge();
    void onNewNodeAdded();
    // Spreads the stubs of the named edges symmetrically by the edge multipliers: each stub's
    // end (B) moves across the flow by 12 units per multiplier step times Factor.
    void calculateEdgesUI(QStringList Edges, bool OutputEdge,
                          const OssSnInitialPositionMap &InitialPositionMap,
                          const OssSnTextPositionMap &InitialTextPositionMap,
                          OssSnInitialPositionMap &PositionMap, int Factor = 1);
    void updateDescriptiveNames();
    void updateDescriptiveInputNames();
    void updateDescriptiveOutputNames();
    void setNodePosition(QPointF position);
    void setNodePositionUndo(QPointF position);
    void setNodeSize(QSizeF size);
    void setNodeSizeUndo(QSizeF size);
    void onHoveredChanged(bool hovered);

protected:
    // Makes the GUI node (the UI context makes backdrops, notes and dots instead).
    virtual OssNgNode *createGuiNode();
    void adoptGuiNode(OssNgNode *gui);
    // Builds the ports from the business node.
    void buildPorts();
    OssShaderNetworkView *currentView(bool logMissing = true) const;
    void applyColours();

    // The GUI node, owned by this context. Its QObject parent is the business node, so that the
    // node can be found from the item.
    QPointer<OssNgNode> m_guiNode;
    int m_shapeType = 0;
    QString m_nodeColorTop;
    QString m_nodeColorBottom;
    int m_portListMode = OssNgExtendedNode::PortListShown;
    QString m_pixmapPath;
    QPoint m_pixmapOffset;
    OssSnInitialPositionMap m_inputPositions;
    OssSnInitialPositionMap m_outputPositions;
    OssSnTextPositionMap m_inputTextPositions;
    OssSnTextPositionMap m_outputTextPositions;
    bool m_wired = false;
};
