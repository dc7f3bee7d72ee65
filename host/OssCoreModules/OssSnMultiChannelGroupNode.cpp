#include "OssSnMultiChannelGroupNode.h"

#include "OssLayerShaderModel.h"

#include <OssUndoManager.h>

OssSnMultiChannelGroupNode::OssSnMultiChannelGroupNode(QObject *parent) : OssSnGroupNode(parent)
{
    m_shaderModel = OssLayerShaderModelManager::instance()->defaultModel();
}

void OssSnMultiChannelGroupNode::setShaderModel(OssLayerShaderModel *model)
{
    if (m_shaderModel == model)
        return;
    m_shaderModel = model;
    setValid(model != nullptr);
    emit shaderModelChanged();
}

QString OssSnMultiChannelGroupNode::shaderModelId() const
{
    return m_shaderModel ? m_shaderModel->id() : QString();
}

void OssSnMultiChannelGroupNode::setShaderModelId(const QString &id)
{
    setShaderModel(OssLayerShaderModelManager::instance()->model(id));
}

void OssSnMultiChannelGroupNode::setValid(bool valid)
{
    if (m_valid == valid)
        return;
    m_valid = valid;
    emit validityChanged();
}

bool OssSnMultiChannelGroupNode::batchConnectInputNode(OssSnBaseNode *base, OssSnBaseNode *over,
                                                       bool undoable)
{
    OssUndoManager::AutoMacro macro(QStringLiteral("Connect Channels"));
    bool connected = false;
    for (const QString &input : inputNames()) {
        OssSnBaseNode *source = nullptr;
        if (input.endsWith(QLatin1String("Base")) || input == QLatin1String("Base"))
            source = base;
        else if (input.endsWith(QLatin1String("Over")) || input == QLatin1String("Over"))
            source = over;
        else
            continue;
        if (!source)
            continue;
        // Each channel input takes the output point of the same stream name when the source
        // has one, its preferred output otherwise.
        const QString stream = input.left(input.size() - 4);
        const QString output =
            source->hasOutputPoint(stream) ? stream : source->prefferedOutputPoint();
        connected = connectInput(input, source, output, undoable) || connected;
    }
    return connected;
}
