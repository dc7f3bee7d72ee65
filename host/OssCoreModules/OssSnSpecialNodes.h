#pragma once

#include "OssCoreModulesExport.h"
#include "OssProject.h"
#include "OssSnBaseNode.h"
#include "OssSnNodeType.h"

#include <QPointer>

// Node kinds with state of their own beyond ports and attributes.

// A procedural whose definition comes from a custom procedural archive (*.opc).
class OSSCOREMODULES_EXPORT OssSnCustomProceduralNode : public OssSnBaseNode
{
    Q_OBJECT
    Q_PROPERTY(QString sourceFile READ sourceFile WRITE setSourceFile)
    Q_PROPERTY(QString definition READ definition WRITE setDefinition)
public:
    using OssSnBaseNode::OssSnBaseNode;
    QString sourceFile() const { return m_sourceFile; }
    void setSourceFile(const QString &path) { m_sourceFile = path; }
    // The node-type description the node was made from by an import ("" before any).
    QString definition() const { return m_definition; }
    void setDefinition(const QString &definition) { m_definition = definition; }
    // Reads a custom procedural archive (*.opc holding a node-type description) and takes its
    // ports and attributes, keeping connections of ports that keep their names (one undo
    // step); false with the reasons in Errors and nothing changed.
    bool importFromFile(const QString &path, QStringList *errors = nullptr);
    bool exportToFile(const QString &path, QString *error = nullptr) const;
    void setDefinitionDirect(const OssSnNodeType &type, const QString &sourceFile);

private:
    QString m_sourceFile;
    QString m_definition;
};

// Records that a node's result was baked into an image set, and whether it is still current.
class OSSCOREMODULES_EXPORT OssSnBakePointNode : public OssSnBaseNode
{
    Q_OBJECT
    Q_PROPERTY(QString geoChannelName READ geoChannelName WRITE setGeoChannelName)
    Q_PROPERTY(bool syncGeoChannel READ syncGeoChannel WRITE setSyncGeoChannel)
    Q_PROPERTY(bool limitBake READ limitBake WRITE setLimitBake)
    Q_PROPERTY(QString limitBakeRange READ limitBakeRange WRITE setLimitBakeRange)
    Q_PROPERTY(
        bool filterCollectionEnabled READ filterCollectionEnabled WRITE setFilterCollectionEnabled)
    Q_PROPERTY(QString filterCollectionText READ filterCollectionText WRITE setFilterCollectionText)
    Q_PROPERTY(QString bakedSignature READ bakedSignature WRITE setBakedSignature)
    Q_PROPERTY(QString bakedImageSet READ bakedImageSet WRITE setBakedImageSet)
public:
    explicit OssSnBakePointNode(QObject *parent = nullptr);

    QString geoChannelName() const { return m_geoChannelName; }
    void setGeoChannelName(const QString &name);
    bool syncGeoChannel() const { return m_syncGeoChannel; }
    void setSyncGeoChannel(bool sync);
    bool limitBake() const { return m_limitBake; }
    void setLimitBake(bool limit);
    QString limitBakeRange() const { return m_limitBakeRange; }
    void setLimitBakeRange(const QString &range) { m_limitBakeRange = range; }
    bool filterCollectionEnabled() const { return m_filterCollectionEnabled; }
    void setFilterCollectionEnabled(bool enabled);
    QString filterCollectionText() const { return m_filterCollectionText; }
    void setFilterCollectionText(const QString &text);

    bool hasBakedResult() const { return !m_bakedSignature.isEmpty(); }
    // True when the upstream graph still matches what was baked. With Deep, a stale bake point
    // upstream makes this one stale too.
    bool isBakedResultUpToDate(bool deep) const;
    // Records a bake of the current upstream graph into the named image set.
    void bake(const QString &imageSetName);
    void clearBake();
    QString bakedSignature() const { return m_bakedSignature; }
    void setBakedSignature(const QString &signature) { m_bakedSignature = signature; }
    QString bakedImageSet() const { return m_bakedImageSet; }
    void setBakedImageSet(const QString &name) { m_bakedImageSet = name; }
    // A text that changes whenever anything upstream that affects the result changes.
    QString upstreamSignature() const;

signals:
    void geoChannelNameChanged(QString name);
    void syncGeoChannelChanged(bool sync);
    void bakedStateChanged();
    void limitBakeChanged(bool limit);
    void filterCollectionEnabledChanged(bool enabled);
    void filterCollectionTextChanged(QString text);

private:
    void watchUpstream();

    QString m_geoChannelName;
    bool m_syncGeoChannel = false;
    bool m_limitBake = false;
    QString m_limitBakeRange;
    bool m_filterCollectionEnabled = false;
    QString m_filterCollectionText;
    QString m_bakedSignature;
    QString m_bakedImageSet;
};

// A node that shows an image set (a paintable channel).
class OSSCOREMODULES_EXPORT OssSnImageSetNodeBase : public OssSnBaseNode
{
    Q_OBJECT
    Q_PROPERTY(QString imageSetName READ imageSetName WRITE setImageSetName)
public:
    using OssSnBaseNode::OssSnBaseNode;
    // The attached channel, or the shading group's channel of the saved image-set name.
    OssChannel *imageSet() const;
    void setImageSet(OssChannel *imageSet, bool notify = true);
    QString imageSetName() const;
    void setImageSetName(const QString &name) { m_imageSetName = name; }
    // Properties that the channel manages are read-only in the panel.
    bool enablePropertiesBasedOnManagedByChannel();

signals:
    void imageSetChanged();

private:
    QPointer<OssChannel> m_imageSet;
    QString m_imageSetName;
};

class OSSCOREMODULES_EXPORT OssSnImageSetNode : public OssSnImageSetNodeBase
{
    Q_OBJECT
public:
    using OssSnImageSetNodeBase::OssSnImageSetNodeBase;
};

// A paint node: an image set node that painting writes into.
class OSSCOREMODULES_EXPORT OssSnChannelInputNode : public OssSnImageSetNodeBase
{
    Q_OBJECT
public:
    using OssSnImageSetNodeBase::OssSnImageSetNodeBase;
};

// Reads a geo-channel of the geometry entity.
class OSSCOREMODULES_EXPORT OssSnGeoChannelNode : public OssSnBaseNode
{
    Q_OBJECT
    Q_PROPERTY(QString geoChannelName READ geoChannelName WRITE setGeoChannelName)
public:
    using OssSnBaseNode::OssSnBaseNode;
    QString geoChannelName() const { return m_geoChannelName; }
    void setGeoChannelName(const QString &name);
    bool imageSetValid() const { return m_imageSetValid; }
    void setImageSetValid(bool valid);

signals:
    void geoChannelNameChanged(QString name);
    void imageSetValidChanged(bool valid);

private:
    QString m_geoChannelName;
    bool m_imageSetValid = false;
};

class OssTeleportNodeManager;

// Common part of teleport broadcast and receiver nodes: a channel name, kept in the node
// attribute "ChannelName".
class OSSCOREMODULES_EXPORT OssSnTeleportNode : public OssSnBaseNode
{
    Q_OBJECT
public:
    explicit OssSnTeleportNode(QObject *parent = nullptr);
    QString channelName() const;
    // One undo step when Undoable.
    void setChannelName(const QString &name, bool undoable = true);
    OssTeleportNodeManager *teleportNodeManager() const;

signals:
    void channelNameChanged(QString name);
    void updateState();
};

class OSSCOREMODULES_EXPORT OssSnBroadcastTeleportNode : public OssSnTeleportNode
{
    Q_OBJECT
public:
    using OssSnTeleportNode::OssSnTeleportNode;
};

class OSSCOREMODULES_EXPORT OssSnReceiverTeleportNode : public OssSnTeleportNode
{
    Q_OBJECT
public:
    using OssSnTeleportNode::OssSnTeleportNode;
};

// Finds the broadcasts and receivers of teleport channels among a root network's nodes.
class OSSCOREMODULES_EXPORT OssTeleportNodeManager
{
public:
    explicit OssTeleportNodeManager(const OssShaderNetwork *rootNetwork);
    OssSnBroadcastTeleportNode *broadcastNodeForChannel(const QString &channel) const;
    QList<OssSnReceiverTeleportNode *> receiversOfChannel(const QString &channel) const;

private:
    const OssShaderNetwork *m_network;
};

// The viewer: inputs "0" to "9" and "ToView"; its current edge is kept by the root network.
class OSSCOREMODULES_EXPORT OssSnViewerNode : public OssSnBaseNode
{
    Q_OBJECT
public:
    using OssSnBaseNode::OssSnBaseNode;
    // Connects viewer input Number (as text) to Source and makes it the current edge.
    bool connectViewerInput(const QString &number, OssSnBaseNode *source,
                            const QString &outputPoint, bool undoable = true);
};

// A layer shader (and the stack shader kind).
class OSSCOREMODULES_EXPORT OssSnLayerShaderNode : public OssSnBaseNode
{
    Q_OBJECT
public:
    using OssSnBaseNode::OssSnBaseNode;
    bool isStackShader() const { return hasTag(QStringLiteral("_stackShader")); }
};

// Backdrops, sticky notes and dots: nodes that only organise the graph.
class OSSCOREMODULES_EXPORT OssSnUINode : public OssSnBaseNode
{
    Q_OBJECT
public:
    using OssSnBaseNode::OssSnBaseNode;
    bool outputPortsHidden() const override { return outputPointCount() == 0; }
    // Title, label, colour and z-order are user attributes that the views show; the type's
    // attributes of those names give their first values.
    void applyType(const OssSnNodeType &type) override;
};
