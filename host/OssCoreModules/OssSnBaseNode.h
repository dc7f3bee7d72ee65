#pragma once

#include "OssCoreModulesExport.h"

#include <OssSerializableObject.h>

#include <QMap>
#include <QPair>
#include <QPointF>
#include <QPointer>
#include <QStringList>
#include <QVector>

class OssShaderNetwork;
class OssSnBaseContext;
class OssSnBaseNode;
struct OssSnNodeType;

// Whether a node's result is cached; 2 means it is.
enum OssSnBaseNodeCacheActiveState : int
{
    OssSnCacheInactive = 0,
    OssSnCacheDirty = 1,
    OssSnCacheActive = 2,
};
Q_DECLARE_METATYPE(OssSnBaseNodeCacheActiveState)

// One input of a node and what feeds it.
struct OssSnNodeInput
{
    QString name;
    QString type;
    QString prettyName;
    QString descriptiveName;
    QStringList tags;
    bool enabled = true;
    bool shared = false;
    QPointer<OssSnBaseNode> source;
    QString sourceOutput;
};

// One output point of a node.
struct OssSnNodeOutputPoint
{
    QString name;
    QString type;
    QString prettyName;
    QString descriptiveName;
};

// One connection seen from its source: which input of which node an output point feeds.
struct OssSnOutputLink
{
    QPointer<OssSnBaseNode> target;
    QString input;
    QString outputPoint;
};

// A port taken out of a node with all it takes to put it back exactly: its place in the port
// list, its description and the connections it had.
struct OssSnTakenPort
{
    enum Kind : int
    {
        None,
        Input,
        Output
    };
    Kind kind = None;
    int index = -1;
    OssSnNodeInput input;
    OssSnNodeOutputPoint output;
    bool preferred = false;
    // An output's connections to the inputs it fed.
    QVector<OssSnOutputLink> links;
    bool isValid() const { return kind != None; }
};

// A node of a shader network: named, typed inputs fed by output points of other nodes, output
// points, node attributes, state flags and contexts that views attach to it.
//
// Operations flagged Undoable push a step onto the host's undo stack (and join the open macro);
// without the flag they change the node directly, as loading and undo steps do.
class OSSCOREMODULES_EXPORT OssSnBaseNode : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setNameDirect)
    // The type's description: not saved, it comes with the type.
    Q_PROPERTY(QString description READ description WRITE setDescription STORED false)
    Q_PROPERTY(QString pathKey READ pathKey WRITE setPathKey)
    Q_PROPERTY(bool enabled READ enabledAsBool WRITE setEnabledDirect)
    Q_PROPERTY(bool bypassed READ bypassed WRITE setBypassedDirect)
    Q_PROPERTY(QString versionUUID READ versionUUID WRITE setVersionUUID)
    Q_PROPERTY(QString versionHashCreated READ versionHashCreated WRITE setVersionHashCreated)
    Q_PROPERTY(QString versionDate READ versionDate WRITE setVersionDate)
    Q_PROPERTY(QStringList tags READ tags WRITE setTags)
public:
    // How a placement request positions the node relative to its reference (grid steps for
    // the types in between).
    enum NodeLayoutType : int
    {
        LayoutAtFreeSpot = 0,
        LayoutBelow = 1,
        LayoutRightFar = 2,
        LayoutBelowLeft = 3,
        LayoutAboveRight = 4,
        LayoutBelowFar = 5,
        LayoutRightFarther = 6,
        LayoutRightOfStream = 7,
        LayoutLeft = 8,
        LayoutBesideReference = 9,
        LayoutOnReference = 10,
        LayoutAboveRightOfStream = 11,
    };
    Q_ENUM(NodeLayoutType)

    explicit OssSnBaseNode(QObject *parent = nullptr);
    ~OssSnBaseNode() override;

    // Sets ports, attributes, tags, description and version from a node type.
    virtual void applyType(const OssSnNodeType &type);

    // --- identity
    QString name() const { return m_name; }
    // Renames (unique names are the network's business: see generateUniqueNodeName).
    void setName(const QString &name, bool undoable = true);
    void setNameDirect(const QString &name);
    QString description() const { return m_description; }
    void setDescription(const QString &description);
    QString pathKey() const { return m_pathKey; }
    void setPathKey(const QString &pathKey) { m_pathKey = pathKey; }
    // The node's full path: its network's path followed by its name.
    QString path() const;
    OssShaderNetwork *network() const;

    QStringList tags() const { return m_tags; }
    void setTags(const QStringList &tags) { m_tags = tags; }
    bool hasTag(const QString &tag) const { return m_tags.contains(tag); }
    void addTag(const QString &tag);

    // --- contexts
    OssSnBaseContext *context(const QString &name) const;
    QStringList contextNames() const { return m_contexts.keys(); }
    // Attaches a context (made a child of this node) under a name, replacing any previous one.
    void attachContext(const QString &name, OssSnBaseContext *context);

    // --- inputs
    QStringList inputNames() const;
    int inputCount() const { return m_inputs.size(); }
    bool hasInput(const QString &name) const { return indexOfInput(name) >= 0; }
    const OssSnNodeInput *input(const QString &name) const;
    QString inputType(const QString &name) const;
    QStringList inputTags(const QString &name) const;
    bool hasInputTag(const QString &input, const QString &tag) const;
    void addInputTag(const QString &input, const QString &tag);
    QString preferredInput() const { return m_preferredInput; }
    void setPreferredInput(const QString &name) { m_preferredInput = name; }
    OssSnBaseNode *inputConnection(const QString &input) const;
    OssSnBaseNode *inputNode(const QString &input) const { return inputConnection(input); }
    QString inputOutputPoint(const QString &input) const;
    // One entry per input, null where the input is free.
    QList<OssSnBaseNode *> inputNodes() const;
    bool inputEnabled(const QString &input) const;
    void setInputEnabled(const QString &input, bool enabled);
    QStringList sharedInputs() const;
    void setInputShared(const QString &input, bool shared);
    QStringList prettyInputNameList() const;
    QStringList descriptiveInputNameList() const;
    void setInputDescriptiveName(const QString &input, const QString &text);

    bool addInput(const QString &name, const QString &type = QStringLiteral("any"),
                  const QStringList &tags = QStringList());
    bool removeInput(const QString &name);
    // Removes an input and returns what restorePort needs to put it back as it was.
    OssSnTakenPort takeInput(const QString &name);
    bool renameInput(const QString &oldName, const QString &newName);
    // Reorders the inputs; Order must name every input once.
    bool setInputOrder(const QStringList &order);

    // --- outputs
    QStringList outputPointNames() const;
    int outputPointCount() const { return m_outputs.size(); }
    bool hasOutputPoint(const QString &name) const { return indexOfOutput(name) >= 0; }
    QString outputPointType(const QString &name) const;
    QString prefferedOutputPoint() const;
    void setPreferredOutputPoint(const QString &name) { m_preferredOutput = name; }
    QStringList prettyOutputNameList() const;
    QStringList descriptiveOutputNameList() const;
    bool addOutputPoint(const QString &name, const QString &type = QStringLiteral("any"));
    bool removeOutputPoint(const QString &name);
    OssSnTakenPort takeOutputPoint(const QString &name);
    // Puts a taken port back at its place with its connections; false when a port of that name
    // exists.
    bool restorePort(const OssSnTakenPort &port);
    bool renameOutputPoint(const QString &oldName, const QString &newName);
    // True when views should not show output ports for this node.
    virtual bool outputPortsHidden() const { return false; }
    // Downstream nodes, each once, in connection order.
    QList<OssSnBaseNode *> outputNodes() const;
    // The (target, input) pairs an output point feeds.
    QList<QPair<OssSnBaseNode *, QString>> outputConnections(const QString &outputPoint) const;
    QVector<OssSnOutputLink> outputLinks() const;

    // --- connections
    // Why Source's output point cannot feed Input, or "" when it can.
    QString connectionRefusal(const QString &input, OssSnBaseNode *source,
                              const QString &outputPoint) const;
    // Connects an input; a null source disconnects it. False (with the reason in Error and
    // the debug log) when the connection is refused.
    bool connectInput(const QString &input, OssSnBaseNode *source, const QString &outputPoint,
                      bool undoable = true, QString *error = nullptr);
    bool disconnectInput(const QString &input, bool undoable = true);
    // Re-targets an input to a new source and output point.
    bool setInputNode(const QString &input, OssSnBaseNode *source, const QString &outputPoint,
                      bool undoable = true)
    {
        return connectInput(input, source, outputPoint, undoable);
    }
    // True when Other is this node or lies upstream of it.
    bool isUpstreamOrSelf(const OssSnBaseNode *other) const;

    // --- state
    bool enabledAsBool() const { return m_enabled; }
    void setEnabled(bool enabled, bool undoable = true);
    void setEnabledDirect(bool enabled);
    void toggleDisable() { setEnabled(!m_enabled); }
    bool bypassed() const { return m_bypassed; }
    void setBypassed(bool bypassed, bool undoable = true);
    void setBypassedDirect(bool bypassed);
    void toggleBypass() { setBypassed(!m_bypassed); }
    OssSnBaseNodeCacheActiveState cacheActive() const { return m_cacheActive; }
    void setCacheActive(OssSnBaseNodeCacheActiveState state);
    bool guiActive() const { return m_guiActive; }
    void setGuiActive(bool active);

    // --- node attributes: the user attributes that stand for the node's parameters, in knob
    // order (other user attributes are display state or the host's own).
    QList<OssCustomAttribute> nodeAttributes() const;
    QStringList nodeAttributeNames() const { return m_attributeOrder; }
    bool hasNodeAttribute(const QString &name) const { return m_attributeOrder.contains(name); }
    OssCustomAttribute nodeAttribute(const QString &name) const;
    QVariant nodeAttributeValue(const QString &name) const;
    // Sets an existing attribute's value, or creates the attribute; undoable when Final.
    void setNodeAttribute(const QString &name, const QVariant &value, bool final = true);
    bool removeNodeAttribute(const QString &name, bool undoable = true);
    bool renameNodeAttribute(const QString &oldName, const QString &newName);
    bool setNodeAttributePrettyName(const QString &name, const QString &prettyName);
    // Replaces the whole ordered list (a new knob order) as one undo step.
    void setNodeAttributesUndo(const QList<OssCustomAttribute> &attributes);
    void setNodeAttributesDirect(const QList<OssCustomAttribute> &attributes);
    // The user-attribute name under which a group shows this node's attribute as a knob.
    QString nodeAttributeNameAsUserAttributeName(const QString &attribute) const;

    // --- versions
    QString versionUUID() const { return m_versionUuid; }
    void setVersionUUID(const QString &uuid) { m_versionUuid = uuid; }
    QString versionHashCreated() const { return m_versionHashCreated; }
    void setVersionHashCreated(const QString &hash) { m_versionHashCreated = hash; }
    // The hash of the installed definition of this node's version UUID ("" when none).
    QString versionHashPresent() const;
    QString versionDate() const { return m_versionDate; }
    void setVersionDate(const QString &date) { m_versionDate = date; }
    // Orders ISO dates; an empty date is older than any other.
    static bool versionDateLT(const QString &a, const QString &b);
    // The installed definition's source text.
    QString versionHashSourcePresentDump() const;
    QString dumpNodeInfo() const;

    // --- placement, container and request helpers
    OssSnBaseNode *containerNode() const { return m_container; }
    void setContainerNode(OssSnBaseNode *container) { m_container = container; }
    void emitRemovedFromNetwork() { emit nodeRemovedFromNetwork(this); }
    void emitNodeStateRefreshed() { emit nodeStateRefreshed(); }

    bool saveObjects(OssSerializer &serializer) override;
    // A saved context the node lacks is made from its saved class through the class factories.
    // The application rebuilds a node of an unknown or missing path key from its saved class
    // with its saved contexts; without them an old backdrop (saved before path keys) would load
    // with no GUI node and vanish from the graph instead of being upgraded by its context.
    OssSerializableObject *onLoadSubObject(OssDeserializer &deserializer, const QString &name,
                                           const QString &type) override;
    bool onLoadCollection(const QString &name, const QString &type, const QString &elementType,
                          int count, const OssStringMap &attributes) override;
    void onLoadCollectionObject(const QString &name, const QString &type,
                                const QString &elementType, int index,
                                const OssStringMap &attributes) override;
    void onEndCollection(const QString &name, const QString &type,
                         const QString &elementType) override;
    // What reading the node found wrong and mended (each a sentence without the node's name);
    // the network reports them with the node's name once the node is read, and forgets them.
    QStringList takeLoadNotes();

    // Used by undo steps and the network: change the connection without checks or history.
    void setConnectionDirect(const QString &input, OssSnBaseNode *source,
                             const QString &outputPoint);

signals:
    void nameChanged(QString name);
    void descriptionChanged(QString description);
    void enabledChanged(int enabled);
    void bypassChanged(bool bypassed);
    void cacheActiveChanged(OssSnBaseNodeCacheActiveState state);
    void guiActiveChanged(bool active);
    void viewerNodeCurrentEdgeChanged(int edge);

    void inputNodeChanged(QString input, OssSnBaseNode *source, QString outputPoint);
    void outputNodeDetached(QString outputPoint);
    void inputAdded(QString input);
    void inputListAdded(QStringList inputs);
    void inputsRefreshed();
    void outputsRefreshed();
    void inputOrderChanged(QStringList order);
    void nodeInputRenamed(QString oldName, QString newName);
    void inputRemoved(QString input);
    void inputEnabledChanged(QString input, bool enabled);
    void inputConnectionIsShared(QString input);
    void outputPointAdded(QString outputPoint);
    void outputPointRemoved(QString outputPoint);
    void outputPointUsed(QString outputPoint);
    void outputPointFreed(QString outputPoint);
    void outputPointRenamed(QString oldName, QString newName);
    void shaderModelChanged();
    void systemShaderStatusSync();

    void emitSetLayout(OssSnBaseNode::NodeLayoutType type, OssSnBaseNode *reference,
                       bool freshCoordinates, bool preventOverlap);
    void nodePositionedManual(OssSnBaseNode *reference, QPointF offset);
    void nodePositionedUnderneath(OssSnBaseNode *reference, int factor);
    void nodePositionedNextTo(OssSnBaseNode *reference);
    void nodeSyncedUnderneathNode(OssSnBaseNode *reference, bool ignoreContainerOfPreviousNode);
    void nodePositionedOnTopIdented(OssSnBaseNode *reference);
    void uniformariseContainers(QList<OssSnBaseNode *> layerListNodes);
    void attachViewerToNode(int input);
    void viewerNodeRequestUpdateVirtualEdge();
    void newNodeAdded();
    void gotoNode();

    void containerChildrenRefreshed(QList<OssSnBaseNode *> children, bool undoable);
    void containerStretchedBy(OssSnBaseNode *node);
    void containerPeersStretched(QList<OssSnBaseNode *> peers);
    void containerRespacedWrt(OssSnBaseNode *node);
    void containerMovedDown(OssSnBaseNode *node);
    void containerMovedToFreshLocation(bool undoable);
    void zOrderChanged(int zOrder);

    void nodeRemovedFromNetwork(OssSnBaseNode *node);
    void nodeRefreshed();
    void nodeStateRefreshed();
    void nodeAttributeCreated(QString name);
    void nodeAttributeChanged(QString name, QVariant value);
    void visibleNodeAttributeRemoved(QString name);
    void nodeAttributesSet();
    void nodeAttributeRenamed(QString oldName, QString newName);
    void nodeAttributePrettyNameChanged(QString name, QString prettyName);

protected:
    void userAttributeChangedHook(const OssCustomAttribute &attribute) override;
    void userAttributeRemovedHook(const QString &name) override;

    int indexOfInput(const QString &name) const;
    int indexOfOutput(const QString &name) const;

private:
    friend class OssSnNodeAttributeCommand;
    void setNodeAttributeDirect(const QString &name, const QVariant &value);
    void addOutputLink(const QString &outputPoint, OssSnBaseNode *target, const QString &input);
    void removeOutputLink(const QString &outputPoint, OssSnBaseNode *target, const QString &input);
    int outputLinkCount(const QString &outputPoint) const;

    QString m_name;
    QString m_description;
    QString m_pathKey;
    QStringList m_tags;
    QVector<OssSnNodeInput> m_inputs;
    QString m_preferredInput;
    QVector<OssSnNodeOutputPoint> m_outputs;
    QString m_preferredOutput;
    QVector<OssSnOutputLink> m_outputLinks;
    QStringList m_attributeOrder;
    QMap<QString, QPointer<OssSnBaseContext>> m_contexts;
    QPointer<OssSnBaseNode> m_container;
    bool m_enabled = true;
    bool m_bypassed = false;
    bool m_guiActive = false;
    OssSnBaseNodeCacheActiveState m_cacheActive = OssSnCacheInactive;
    QString m_versionUuid;
    QString m_versionHashCreated;
    QString m_versionDate;
    // Collections being read back.
    QVector<OssSnNodeInput> m_loadingInputs;
    QVector<OssSnNodeOutputPoint> m_loadingOutputs;
    QStringList m_loadingAttributeOrder;
    QStringList m_readCollections;
    QStringList m_loadNotes;
};

Q_DECLARE_METATYPE(OssSnBaseNode *)
