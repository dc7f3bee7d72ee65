#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnGroupNode.h"

#include <QString>

class OssLayerShaderModel;

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
