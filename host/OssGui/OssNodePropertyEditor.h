#pragma once

#include "OssExpandableListWidget.h"
#include "OssGuiExport.h"

#include <QHash>
#include <QPointer>
#include <QRegularExpression>
#include <QStringList>
#include <QVariant>

class OssAttributeEditor;
class OssSnBaseNode;

// How a node's property editor lays out its attributes.
struct OSSGUI_EXPORT OssNodePropertyEditorOptions
{
    // With GroupIntoSections, the attributes whose names match a pattern form a collapsible
    // section, in the patterns' order; a section is named after its pattern without a trailing
    // ".*" ("Diffuse.*" gives "Diffuse").
    QList<QRegularExpression> sectionOrder;
    // Sections left out, by name.
    QStringList hiddenSections;
    // Attributes that lead the panel, above every section (such as a shader's "name").
    QStringList leadingAttributes;
    // The path of the section that gathers the attributes no pattern matches; its last element
    // names the section ("/Node" gives "Node").
    QStringList otherSectionPath;
    bool groupIntoSections = false;
    bool leadingAttributesFirst = false;
    // The attributes no pattern matches go into their own section (else they lead the panel).
    bool otherAttributesInSection = false;
    // The heading's text; empty means the node's name, following renames.
    QString title;
};

// The host's property editor of one node: a collapsible panel headed by the node's name with
// one editor per visible node attribute. Every change the user makes is one undo step titled
// after the attribute ("Set Amount of Mix1"); a slider drag previews its steps and leaves one
// step when it is let go. The editors follow the node's values whoever changes them (undo,
// scripts, another panel).
class OSSGUI_EXPORT OssNodePropertyEditor : public OssExpandableListWidget
{
    Q_OBJECT
public:
    OssNodePropertyEditor(OssSnBaseNode *node, const OssNodePropertyEditorOptions &options,
                          QWidget *parent = nullptr);

    // The node's property editor; null for a null node.
    static OssNodePropertyEditor *create(OssSnBaseNode *node, QWidget *parent,
                                         const OssNodePropertyEditorOptions &options = {});

    OssSnBaseNode *node() const;
    OssAttributeEditor *editor(const QString &attributeName) const;
    // In the order they are shown.
    QList<OssAttributeEditor *> editors() const { return m_order; }
    QStringList sectionNames() const;
    OssExpandableListWidget *section(const QString &name) const;

private:
    void build(const OssNodePropertyEditorOptions &options);
    QWidget *addForm(QWidget *parent, const QStringList &attributeNames);
    void onEdited(const QVariant &value, bool final);
    void onAttributeChanged(const QString &name, const QVariant &value);

    QPointer<OssSnBaseNode> m_node;
    QHash<QString, OssAttributeEditor *> m_editors;
    QList<OssAttributeEditor *> m_order;
    QList<OssExpandableListWidget *> m_sections;
    // The value an attribute had when a drag on its slider began.
    QHash<QString, QVariant> m_dragStart;
};
