#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnBaseNode.h"

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

protected:
    void recordDrivenAttributeChanges(const QString &name, const QVariant &value) override;

private:
    void followRenames(OssSnBaseNode *node);
    void onInnerNodeRenamed(OssSnBaseNode *node, const QString &oldName);
    void onOwnAttributeChanged(const QString &name, const QVariant &value);

    OssShaderNetwork *m_groupNetwork = nullptr;
    QList<OssStringMap> m_loadingLinks;
};
