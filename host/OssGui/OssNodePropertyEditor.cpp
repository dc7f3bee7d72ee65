#include "OssNodePropertyEditor.h"

#include "OssAttributeEditor.h"

#include <OssCustomAttribute.h>
#include <OssShaderNetworkManager.h>
#include <OssSnBaseNode.h>
#include <OssUndoManager.h>

#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace {

QString sectionName(const QRegularExpression &pattern)
{
    QString name = pattern.pattern();
    if (name.endsWith(QLatin1String(".*")))
        name.chop(2);
    return name;
}

} // namespace

OssNodePropertyEditor::OssNodePropertyEditor(OssSnBaseNode *node,
                                             const OssNodePropertyEditorOptions &options,
                                             QWidget *parent)
    : OssExpandableListWidget(options.title.isEmpty() && node ? node->name() : options.title,
                              parent),
      m_node(node)
{
    if (!node)
        return;
    if (heading()) {
        QFont bold = heading()->font();
        bold.setBold(true);
        heading()->setFont(bold);
    }
    if (options.title.isEmpty() && heading())
        connect(node, &OssSnBaseNode::nameChanged, heading(), &OssExpandableListHeading::setText);
    connect(node, &OssSnBaseNode::nodeAttributeChanged, this,
            &OssNodePropertyEditor::onAttributeChanged);
    build(options);
}

OssNodePropertyEditor *OssNodePropertyEditor::create(OssSnBaseNode *node, QWidget *parent,
                                                     const OssNodePropertyEditorOptions &options)
{
    return node ? new OssNodePropertyEditor(node, options, parent) : nullptr;
}

OssSnBaseNode *OssNodePropertyEditor::node() const
{
    return m_node;
}

OssAttributeEditor *OssNodePropertyEditor::editor(const QString &attributeName) const
{
    return m_editors.value(attributeName);
}

QStringList OssNodePropertyEditor::sectionNames() const
{
    QStringList names;
    for (OssExpandableListWidget *section : m_sections)
        names.append(section->heading()->text());
    return names;
}

OssExpandableListWidget *OssNodePropertyEditor::section(const QString &name) const
{
    for (OssExpandableListWidget *section : m_sections)
        if (section->heading()->text() == name)
            return section;
    return nullptr;
}

void OssNodePropertyEditor::build(const OssNodePropertyEditorOptions &options)
{
    auto *body = new QWidget(this);
    auto *layout = new QVBoxLayout(body);
    layout->setContentsMargins(4, 2, 4, 4);
    layout->setSpacing(2);
    setBody(body);

    QStringList visible;
    for (const OssCustomAttribute &attribute : m_node->nodeAttributes())
        if (attribute.isVisible())
            visible.append(attribute.name());
    if (!options.groupIntoSections || options.sectionOrder.isEmpty()) {
        addForm(body, visible);
        return;
    }

    // Leading attributes first, then one list per pattern, then whatever is left.
    QStringList leading;
    if (options.leadingAttributesFirst) {
        for (const QString &name : options.leadingAttributes)
            if (visible.removeAll(name) > 0)
                leading.append(name);
    }
    QList<QPair<QString, QStringList>> sections;
    for (const QRegularExpression &pattern : options.sectionOrder) {
        const QRegularExpression whole(QRegularExpression::anchoredPattern(pattern.pattern()),
                                       pattern.patternOptions());
        QStringList members;
        for (const QString &name : qAsConst(visible))
            if (whole.match(name).hasMatch())
                members.append(name);
        for (const QString &name : qAsConst(members))
            visible.removeAll(name);
        if (!members.isEmpty() && !options.hiddenSections.contains(sectionName(pattern)))
            sections.append({sectionName(pattern), members});
    }
    if (options.otherAttributesInSection && !visible.isEmpty()) {
        const QString path = options.otherSectionPath.value(0, QStringLiteral("/Node"));
        sections.prepend({path.section(QLatin1Char('/'), -1), visible});
    } else {
        leading.append(visible);
    }

    if (!leading.isEmpty())
        addForm(body, leading);
    for (const auto &entry : qAsConst(sections)) {
        auto *section = new OssExpandableListWidget(entry.first, body);
        section->setObjectName(entry.first);
        QFont italic = section->heading()->font();
        italic.setItalic(true);
        section->heading()->setFont(italic);
        auto *sectionBody = new QWidget(section);
        auto *sectionLayout = new QVBoxLayout(sectionBody);
        sectionLayout->setContentsMargins(8, 0, 0, 0);
        addForm(sectionBody, entry.second);
        section->setBody(sectionBody);
        layout->addWidget(section);
        m_sections.append(section);
    }
}

QWidget *OssNodePropertyEditor::addForm(QWidget *parent, const QStringList &attributeNames)
{
    auto *form = new QWidget(parent);
    auto *formLayout = new QFormLayout(form);
    formLayout->setContentsMargins(0, 0, 0, 0);
    formLayout->setSpacing(3);
    formLayout->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    for (const QString &name : attributeNames) {
        const OssCustomAttribute attribute = m_node->nodeAttribute(name);
        OssAttributeEditor *editor =
            OssAttributeEditor::create(OssAttributeSpec::forAttribute(m_node, attribute), form);
        editor->setValue(attribute.value());
        auto *label = new QLabel(attribute.prettyName(), form);
        label->setBuddy(editor);
        formLayout->addRow(label, editor);
        connect(editor, &OssAttributeEditor::edited, this, &OssNodePropertyEditor::onEdited);
        m_editors.insert(name, editor);
        m_order.append(editor);
    }
    parent->layout()->addWidget(form);
    return form;
}

void OssNodePropertyEditor::onEdited(const QVariant &value, bool final)
{
    auto *editor = qobject_cast<OssAttributeEditor *>(sender());
    if (!editor || !m_node)
        return;
    const QString name = editor->attributeName();
    if (!final) {
        // A preview: shown at once, recorded when the drag ends.
        if (!m_dragStart.contains(name))
            m_dragStart.insert(name, m_node->nodeAttributeValue(name));
        m_node->setNodeAttribute(name, value, false);
        return;
    }
    // The step of a drag goes from where it began to where it ended.
    if (m_dragStart.contains(name))
        m_node->setNodeAttribute(name, m_dragStart.take(name), false);
    if (m_node->nodeAttributeValue(name) == value)
        return;
    {
        AutoMacro macro(tr("Set %1 of %2").arg(name, m_node->name()));
        m_node->setNodeAttribute(name, value, true);
    }
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}

void OssNodePropertyEditor::onAttributeChanged(const QString &name, const QVariant &value)
{
    if (OssAttributeEditor *editor = m_editors.value(name))
        editor->setValue(value);
}
