#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnGroupNode.h"

#include <QString>
#include <QStringList>

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
