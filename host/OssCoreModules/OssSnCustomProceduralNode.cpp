#include "OssSnCustomProceduralNode.h"

#include "OssArchive.h"
#include "OssSnNodeType.h"
#include "OssSnNodeTypeCatalogue.h"

#include <OssUndoCommand.h>
#include <OssUndoManager.h>

#include <QPointer>

namespace {

// Swaps a custom procedural's definition (ports, attributes, source) and back.
class CustomProceduralDefinitionCommand : public OssUndoCommand
{
public:
    CustomProceduralDefinitionCommand(OssSnCustomProceduralNode *node, const OssSnNodeType &after,
                                      const QString &sourceFile)
        : OssUndoCommand(QStringLiteral("Import Custom Procedural")), m_node(node), m_after(after),
          m_afterFile(sourceFile), m_beforeFile(node->sourceFile())
    {
        m_before.pathKey = node->pathKey();
        m_before.description = node->description();
        m_before.tags = node->tags();
        for (const QString &input : node->inputNames())
            m_before.inputs.append(
                OssSnNodeTypePort{input, node->inputType(input), node->inputTags(input)});
        m_before.preferredInput = node->preferredInput();
        for (const QString &output : node->outputPointNames())
            m_before.outputs.append(OssSnNodeTypePort{output, node->outputPointType(output), {}});
        m_before.preferredOutput = node->prefferedOutputPoint();
        for (const OssCustomAttribute &attribute : node->nodeAttributes())
            m_before.attributes.append(OssSnNodeTypeAttribute{
                attribute.name(), attribute.prettyName(), attribute.typeName(), attribute.value(),
                attribute.isVisible()});
        m_before.versionUuid = node->versionUUID();
        m_before.hash = node->versionHashCreated();
        m_before.date = node->versionDate();
        m_before.source = node->definition();
    }
    void redo() override
    {
        if (m_node)
            m_node->setDefinitionDirect(m_after, m_afterFile);
    }
    void undo() override
    {
        if (m_node)
            m_node->setDefinitionDirect(m_before, m_beforeFile);
    }

private:
    QPointer<OssSnCustomProceduralNode> m_node;
    OssSnNodeType m_before, m_after;
    QString m_afterFile, m_beforeFile;
};

} // namespace

bool OssSnCustomProceduralNode::importFromFile(const QString &path, QStringList *errors)
{
    QByteArray data;
    QString error;
    OssSnNodeType type;
    if (!OssArchive::read(path, QString::fromLatin1(OssArchive::CustomProceduralKind), &data,
                          &error) ||
        !OssSnNodeTypeCatalogue::parseBytes(data, path, &type, &error)) {
        if (errors)
            errors->append(error);
        return false;
    }
    // The definition replaces ports and attributes; connections of ports that keep their
    // names survive. One undo step.
    OssUndoManager::AutoMacro macro(QStringLiteral("Import Custom Procedural"));
    struct Link
    {
        QString input;
        QPointer<OssSnBaseNode> source;
        QString output;
    };
    QList<Link> inputs;
    for (const QString &input : inputNames())
        if (OssSnBaseNode *source = inputConnection(input))
            inputs.append(Link{input, source, inputOutputPoint(input)});
    const QVector<OssSnOutputLink> outputs = outputLinks();
    for (const Link &link : qAsConst(inputs))
        disconnectInput(link.input);
    for (const OssSnOutputLink &link : outputs)
        if (link.target)
            link.target->disconnectInput(link.input);
    OssUndoManager::instance()->addUndo(new CustomProceduralDefinitionCommand(this, type, path));
    for (const Link &link : qAsConst(inputs))
        if (link.source && hasInput(link.input))
            connectInput(link.input, link.source, link.output);
    for (const OssSnOutputLink &link : outputs)
        if (link.target && hasOutputPoint(link.outputPoint))
            link.target->connectInput(link.input, this, link.outputPoint);
    return true;
}

bool OssSnCustomProceduralNode::exportToFile(const QString &path, QString *error) const
{
    return OssArchive::write(path, QString::fromLatin1(OssArchive::CustomProceduralKind),
                             m_definition.toUtf8(), error);
}

void OssSnCustomProceduralNode::setDefinitionDirect(const OssSnNodeType &type,
                                                    const QString &sourceFile)
{
    // The node keeps its own name and path key: the path key picks the node's class when a
    // project is read, and the imported description's key would make it a plain node of that
    // type, without its definition.
    const QString name = this->name();
    const QString ownPathKey = pathKey();
    applyType(type);
    setNameDirect(name);
    setPathKey(ownPathKey);
    m_sourceFile = sourceFile;
    m_definition = type.source;
    emit inputsRefreshed();
    emit outputsRefreshed();
    emit nodeRefreshed();
}
