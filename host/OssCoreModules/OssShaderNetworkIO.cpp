#include "OssShaderNetworkIO.h"

#include "OssShaderNetwork.h"
#include "OssSnBaseNode.h"

#include <OssDebug.h>
#include <OssDeserializer.h>
#include <OssFileWriter.h>
#include <OssSerializer.h>
#include <OssUndoManager.h>

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>

const char *const OssShaderNetworkIO::MimeType = "application/x-ossa-nodes";

QStringList OssShaderNetworkIO::s_lastWarnings;

QByteArray OssShaderNetworkIO::nodesToData(const QList<OssSnBaseNode *> &nodes)
{
    if (nodes.isEmpty())
        return QByteArray();
    OssShaderNetwork *network = nodes.first()->network();
    for (OssSnBaseNode *node : nodes)
        if (!node || node->network() != network)
            return QByteArray();
    network->setSaveSubset(nodes);
    OssSerializer serializer;
    const QByteArray data = serializer.saveToData(network, QStringLiteral("nodes"));
    network->setSaveSubset({});
    return data;
}

QList<OssSnBaseNode *> OssShaderNetworkIO::nodesFromData(OssShaderNetwork *network,
                                                         const QByteArray &data, bool undoable,
                                                         QString *error, const QString &source)
{
    if (!network) {
        if (error)
            *error = QStringLiteral("no network to insert into");
        return {};
    }
    s_lastWarnings.clear();
    // Read into a scratch network the host does not announce, then move the nodes over.
    OssDeserializer deserializer;
    OssShaderNetwork scratch;
    scratch.setAnnounceNodes(false);
    deserializer.setRestoreUuids(false);
    if (!deserializer.loadFromData(data, &scratch, error, source,
                                   QStringLiteral("OssShaderNetwork")))
        return {};
    // What the reader mended or dropped is reported, not swallowed with the scratch network.
    s_lastWarnings = deserializer.warnings() + scratch.loadWarnings();
    for (const QString &warning : qAsConst(s_lastWarnings))
        OSS_DEBUG("[ !! ] %s: %s", qPrintable(source), qPrintable(warning));
    const QList<OssSnBaseNode *> nodes = scratch.nodes();
    OssUndoManager::AutoMacro macro(QStringLiteral("Insert Nodes"));
    for (OssSnBaseNode *node : nodes) {
        scratch.takeNodeDirect(node);
        node->setSelected(false);
        network->insertNode(node, undoable);
    }
    return nodes;
}

QList<OssSnBaseNode *> OssShaderNetworkIO::duplicateNodes(OssShaderNetwork *network,
                                                          const QList<OssSnBaseNode *> &nodes,
                                                          bool undoable, const QPointF &)
{
    const QByteArray data = nodesToData(nodes);
    if (data.isEmpty())
        return {};
    OssUndoManager::AutoMacro macro(QStringLiteral("Duplicate Nodes"));
    return nodesFromData(network, data, undoable, nullptr);
}

bool OssShaderNetworkIO::copyNodesToClipboard(const QList<OssSnBaseNode *> &nodes,
                                              const QString &text)
{
    const QByteArray data = nodesToData(nodes);
    if (data.isEmpty())
        return false;
    auto *mime = new QMimeData;
    mime->setData(QString::fromLatin1(MimeType), data);
    mime->setText(text.isEmpty() ? QString::fromUtf8(data) : text);
    QGuiApplication::clipboard()->setMimeData(mime);
    return true;
}

bool OssShaderNetworkIO::clipboardHasNodes()
{
    const QMimeData *mime = QGuiApplication::clipboard()->mimeData();
    return mime && mime->hasFormat(QString::fromLatin1(MimeType));
}

QList<OssSnBaseNode *> OssShaderNetworkIO::pasteNodesFromClipboard(OssShaderNetwork *network,
                                                                   bool undoable, const QPointF &,
                                                                   QString *error)
{
    const QMimeData *mime = QGuiApplication::clipboard()->mimeData();
    QByteArray data;
    if (mime && mime->hasFormat(QString::fromLatin1(MimeType)))
        data = mime->data(QString::fromLatin1(MimeType));
    else if (mime && mime->hasText())
        data = mime->text().toUtf8();
    if (data.isEmpty()) {
        if (error)
            *error = QStringLiteral("the clipboard holds no nodes");
        return {};
    }
    OssUndoManager::AutoMacro macro(QStringLiteral("Paste Nodes"));
    return nodesFromData(network, data, undoable, error, QStringLiteral("clipboard"));
}

bool OssShaderNetworkIO::saveNodesToXmlFile(const QList<OssSnBaseNode *> &nodes,
                                            const QString &path, QString *error)
{
    const QByteArray data = nodesToData(nodes);
    if (data.isEmpty()) {
        if (error)
            *error = QStringLiteral("no nodes of one network to save");
        return false;
    }
    return OssFileWriter::writeAtomically(path, {data}, error);
}

QList<OssSnBaseNode *> OssShaderNetworkIO::loadNodesFromXmlFile(OssShaderNetwork *network,
                                                                const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = QStringLiteral("\"%1\": cannot open: %2").arg(path, file.errorString());
        return {};
    }
    OssUndoManager::AutoMacro macro(QStringLiteral("Import Nodes"));
    return nodesFromData(network, file.readAll(), true, error, path);
}
