#include "OssSnMaterialNode.h"

#include "OssArchive.h"
#include "OssShaderNetwork.h"

#include <OssDeserializer.h>
#include <OssSerializer.h>
#include <OssUndoManager.h>

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPointer>

void OssSnMaterialNode::connectPreviewShaderNetwork()
{
    if (m_previewConnected)
        return;
    m_previewConnected = true;
    emit nodeStateRefreshed();
}

bool OssSnMaterialNode::importFromFile(const QString &path, QStringList *errors)
{
    QByteArray data;
    QString error;
    if (!OssArchive::read(path, QString::fromLatin1(OssArchive::MaterialKind), &data, &error)) {
        if (errors)
            errors->append(error);
        return false;
    }
    OssDeserializer deserializer;
    QString type;
    if (!deserializer.inspect(data, &type, &error, path)) {
        if (errors)
            errors->append(error);
        return false;
    }
    if (type != QLatin1String("OssShaderNetwork")) {
        if (errors)
            errors->append(
                QStringLiteral("\"%1\": the archive holds no material network").arg(path));
        return false;
    }
    // Read into a scratch network first so a bad archive leaves this material as it was.
    OssShaderNetwork scratch;
    scratch.setAnnounceNodes(false);
    deserializer.setRestoreUuids(false);
    if (!deserializer.loadFromData(data, &scratch, &error, path)) {
        if (errors)
            errors->append(error);
        return false;
    }
    if (errors)
        errors->append(scratch.loadWarnings());
    OssUndoManager::AutoMacro macro(QStringLiteral("Import Material"));
    // The material's ports follow its inner input and output nodes, which the import replaces:
    // the connections of ports the imported material has too are made again.
    struct Link
    {
        QPointer<OssSnBaseNode> target;
        QString input;
        QPointer<OssSnBaseNode> source;
        QString output;
    };
    QList<Link> links;
    for (const QString &input : inputNames())
        if (OssSnBaseNode *upstream = inputConnection(input))
            links.append(Link{this, input, upstream, inputOutputPoint(input)});
    for (const OssSnOutputLink &link : outputLinks())
        if (link.target)
            links.append(Link{link.target, link.input, this, link.outputPoint});
    for (const Link &link : qAsConst(links))
        link.target->disconnectInput(link.input);
    groupNetwork()->removeNodes(groupNetwork()->nodes());
    const QList<OssSnBaseNode *> nodes = scratch.nodes();
    for (OssSnBaseNode *node : nodes) {
        scratch.takeNodeDirect(node);
        groupNetwork()->insertNode(node);
    }
    for (const Link &link : qAsConst(links))
        if (link.target && link.source && link.target->hasInput(link.input) &&
            link.source->hasOutputPoint(link.output))
            link.target->connectInput(link.input, link.source, link.output);
    return true;
}

bool OssSnMaterialNode::exportToFile(const QString &path, QString *error)
{
    OssSerializer serializer;
    const QByteArray data = serializer.saveToData(groupNetwork(), QStringLiteral("material"));
    return OssArchive::write(path, QString::fromLatin1(OssArchive::MaterialKind), data, error);
}

bool OssSnMaterialNode::generateMaterialThumbnail(const QString &path)
{
    // A swatch of the material's inner nodes: one stripe per node, coloured from its name.
    QImage image(128, 128, QImage::Format_ARGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    const QList<OssSnBaseNode *> nodes = groupNetwork()->nodes();
    const int count = qMax(1, nodes.size());
    for (int i = 0; i < nodes.size(); ++i) {
        const uint hash = qHash(nodes.at(i)->name());
        painter.fillRect(QRect(0, i * 128 / count, 128, 128 / count + 1),
                         QColor::fromHsv(int(hash % 360), 160, 200));
    }
    painter.end();
    return image.save(path, "PNG");
}
