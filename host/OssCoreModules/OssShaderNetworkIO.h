#pragma once

#include "OssCoreModulesExport.h"

#include <QByteArray>
#include <QList>
#include <QPointF>
#include <QString>
#include <QStringList>

class OssShaderNetwork;
class OssSnBaseNode;

// Copies of nodes: duplicate, clipboard, node files (*.ong). Copies keep their state,
// attributes, contexts and the connections among themselves; each operation that inserts
// nodes is one undo step and returns the inserted nodes so the view can select and place them.
class OSSCOREMODULES_EXPORT OssShaderNetworkIO
{
public:
    static const char *const MimeType;

    // The nodes of one network as a node document; empty when they are not of one network.
    static QByteArray nodesToData(const QList<OssSnBaseNode *> &nodes);
    // Inserts the nodes of a node document into Network; empty with Error on a bad document.
    // A document read with repairs (values that do not convert, nodes of unknown types,
    // connections to missing nodes) inserts what it could; lastWarnings() then names each
    // repair until the next read.
    static QList<OssSnBaseNode *> nodesFromData(OssShaderNetwork *network, const QByteArray &data,
                                                bool undoable, QString *error,
                                                const QString &source = QStringLiteral("data"));

    // The cursor position is the view's business (it places what was inserted).
    static QList<OssSnBaseNode *> duplicateNodes(OssShaderNetwork *network,
                                                 const QList<OssSnBaseNode *> &nodes, bool undoable,
                                                 const QPointF &cursor = QPointF());
    static bool copyNodesToClipboard(const QList<OssSnBaseNode *> &nodes, const QString &text);
    static bool clipboardHasNodes();
    static QList<OssSnBaseNode *> pasteNodesFromClipboard(OssShaderNetwork *network, bool undoable,
                                                          const QPointF &cursor = QPointF(),
                                                          QString *error = nullptr);
    static bool saveNodesToXmlFile(const QList<OssSnBaseNode *> &nodes, const QString &path,
                                   QString *error);
    static QList<OssSnBaseNode *> loadNodesFromXmlFile(OssShaderNetwork *network,
                                                       const QString &path, QString *error);
    static QStringList lastWarnings() { return s_lastWarnings; }

private:
    static QStringList s_lastWarnings;
};
