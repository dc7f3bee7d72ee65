#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnBaseNode.h"

class OssLayerShaderModel;

// A node that holds a subnetwork. Its inputs and outputs mirror the subnetwork's group input
// and output nodes (tags "_input" and "_output"), in the group's order.
class OSSCOREMODULES_EXPORT OssSnGroupNode : public OssSnBaseNode
{
    Q_OBJECT
public:
    explicit OssSnGroupNode(QObject *parent = nullptr);

    OssShaderNetwork *groupNetwork() const { return m_groupNetwork; }
    // The subnetwork's input nodes in the group's input order.
    QList<OssSnBaseNode *> groupInputNodes() const;
    QList<OssSnBaseNode *> groupOutputNodes() const;
    // Reorders the group's inputs (names of its inputs, each once).
    bool reorderInputs(const QStringList &order);
    // Writes the group as a gizmo file; false with the reason in Error.
    bool exportAsGizmo(const QString &fileName, QString *error = nullptr);
    // The attribute group of a knob named "group/knob" ("" for a plain name).
    static QString getAttributeGroupName(const QString &attribute);

    // Knobs: attributes of the group named "group/knob" that drive attributes of inner nodes.
    // Each call is one undo step.
    // Creates a knob for Inner's attribute in the attribute group Group (the inner node's name
    // when empty); returns the knob's attribute name, "" when refused.
    QString createKnob(OssSnBaseNode *inner, const QString &attribute,
                       const QString &group = QString());
    // Replaces the given knobs by one knob NewName (in the first knob's group) that drives all
    // their links; refused when the knobs' values differ in type. Returns its attribute name.
    QString linkKnobs(const QString &newName, const QStringList &knobs);
    bool renameKnobName(const QString &knob, const QString &oldPrettyName, const QString &newText);
    bool deleteAttribute(const QString &knob);
    // The (inner node, attribute) pairs a knob drives.
    QList<QPair<OssSnBaseNode *, QString>> knobLinks(const QString &knob) const;

    // The group's ports follow its input and output nodes. Its network calls these as it adds,
    // takes and puts back inner nodes, inside the same host operation (and undo step): a new
    // input node adds a port at the end; taking the node takes the port with its connections;
    // putting the node back restores the port at its place with them.
    void addInnerNodePort(OssSnBaseNode *node);
    OssSnTakenPort takeInnerNodePort(OssSnBaseNode *node);
    void restoreInnerNodePort(OssSnBaseNode *node, const OssSnTakenPort &port);

    bool saveObjects(OssSerializer &serializer) override;
    OssSerializableObject *onLoadSubObject(OssDeserializer &deserializer, const QString &name,
                                           const QString &type) override;
    bool onLoadCollection(const QString &name, const QString &type, const QString &elementType,
                          int count, const OssStringMap &attributes) override;
    void onLoadCollectionObject(const QString &name, const QString &type,
                                const QString &elementType, int index,
                                const OssStringMap &attributes) override;
    void onLoadFinished() override;

signals:
    void openNodeGraph();
    void newGroupNodeInputOutputCreated();
    void clearPortClusters();
    void updatePortClusters();

private:
    void followRenames(OssSnBaseNode *node);
    void onInnerNodeRenamed(OssSnBaseNode *node, const QString &oldName);
    void onOwnAttributeChanged(const QString &name, const QVariant &value);

    OssShaderNetwork *m_groupNetwork = nullptr;
    QList<OssStringMap> m_loadingLinks;
};

// A group whose inputs and outputs follow a multi-channel shader model.
class OSSCOREMODULES_EXPORT OssSnMultiChannelGroupNode : public OssSnGroupNode
{
    Q_OBJECT
    Q_PROPERTY(QString shaderModelId READ shaderModelId WRITE setShaderModelId)
public:
    // New multi-channel nodes carry the host's default shader model.
    explicit OssSnMultiChannelGroupNode(QObject *parent = nullptr);
    OssLayerShaderModel *shaderModel() const { return m_shaderModel; }
    void setShaderModel(OssLayerShaderModel *model);
    QString shaderModelId() const;
    // Unknown ids leave the node without a model (and invalid).
    void setShaderModelId(const QString &id);
    bool isValid() const { return m_valid; }
    void setValid(bool valid);
    // Connects Base and Over sources to every channel's base and over input at once.
    bool batchConnectInputNode(OssSnBaseNode *base, OssSnBaseNode *over, bool undoable = true);

signals:
    void validityChanged();

private:
    OssLayerShaderModel *m_shaderModel = nullptr;
    bool m_valid = true;
};

class OSSCOREMODULES_EXPORT OssSnMultiChannelMergeNode : public OssSnMultiChannelGroupNode
{
    Q_OBJECT
public:
    using OssSnMultiChannelGroupNode::OssSnMultiChannelGroupNode;
};

class OSSCOREMODULES_EXPORT OssSnMultiChannelBakePointNode : public OssSnMultiChannelGroupNode
{
    Q_OBJECT
public:
    using OssSnMultiChannelGroupNode::OssSnMultiChannelGroupNode;
    // The bake points inside that are active (one per channel).
    QList<OssSnBaseNode *> activeBakePointNodes() const;
    // Makes one bake point per output of the group's subnetwork that lacks one.
    int configureBakepoints();

signals:
    void bakedStateChanged();
};

class OSSCOREMODULES_EXPORT OssSnMultiChannelBottomTransparencyNode
    : public OssSnMultiChannelGroupNode
{
    Q_OBJECT
public:
    using OssSnMultiChannelGroupNode::OssSnMultiChannelGroupNode;
};

// A material: a group kind with a preview network and import from material archives.
class OSSCOREMODULES_EXPORT OssSnMaterialNode : public OssSnGroupNode
{
    Q_OBJECT
public:
    using OssSnGroupNode::OssSnGroupNode;
    bool previewShaderNetworkConnected() const { return m_previewConnected; }
    void connectPreviewShaderNetwork();
    // Reads a material archive (*.oma: a saved group network) into this node, replacing its
    // network (one undo step); false with the reasons in Errors and nothing changed.
    bool importFromFile(const QString &path, QStringList *errors = nullptr);
    // Writes the material's network as a material archive.
    bool exportToFile(const QString &path, QString *error = nullptr);
    // Writes a thumbnail picture describing the material; false when it cannot be written.
    bool generateMaterialThumbnail(const QString &path);

private:
    bool m_previewConnected = false;
};
