#include "OssLayerShaderModel.h"

#include "OssSnGroupNode.h"
#include "OssSnMultiChannelGroupNode.h"
#include "OssSnNodeTypeCatalogue.h"

OssLayerShaderModel::OssLayerShaderModel(const QString &id,
                                         const QList<OssLayerShaderModelInput> &inputs,
                                         QObject *parent)
    : QObject(parent), m_id(id), m_inputs(inputs)
{}

const OssLayerShaderModelInput *OssLayerShaderModel::input(const QString &streamName) const
{
    for (const OssLayerShaderModelInput &in : m_inputs)
        if (in.streamName() == streamName)
            return &in;
    return nullptr;
}

const OssLayerShaderModelInput *OssLayerShaderModel::input(int index) const
{
    return index >= 0 && index < m_inputs.size() ? &m_inputs.at(index) : nullptr;
}

OssLayerShaderModelManager *OssLayerShaderModelManager::instance()
{
    static OssLayerShaderModelManager *manager = new OssLayerShaderModelManager;
    return manager;
}

OssLayerShaderModelManager::OssLayerShaderModelManager(QObject *parent) : QObject(parent)
{
    rebuild();
    connect(OssSnNodeTypeCatalogue::instance(),
            &OssSnNodeTypeCatalogue::registeredNodePopulationChanged, this,
            &OssLayerShaderModelManager::rebuild);
}

void OssLayerShaderModelManager::rebuild()
{
    // Models are kept (nodes point at them); new layer shader types add models.
    const OssSnNodeTypeCatalogue *catalogue = OssSnNodeTypeCatalogue::instance();
    for (const QString &key : catalogue->nodePathKeys()) {
        const OssSnNodeType *type = catalogue->type(key);
        if (!type || type->nodeClass != QLatin1String("OssSnLayerShaderNode"))
            continue;
        const QString id = key.section(QLatin1Char('/'), -1);
        if (model(id))
            continue;
        QList<OssLayerShaderModelInput> inputs;
        for (const OssSnNodeTypePort &port : type->inputs)
            inputs.append(OssLayerShaderModelInput(port.name, port.type));
        m_models.append(new OssLayerShaderModel(id, inputs, this));
    }
}

OssLayerShaderModel *OssLayerShaderModelManager::model(const QString &id) const
{
    for (OssLayerShaderModel *candidate : m_models)
        if (candidate->id() == id)
            return candidate;
    return nullptr;
}

QStringList OssLayerShaderModelManager::modelIds() const
{
    QStringList ids;
    for (const OssLayerShaderModel *candidate : m_models)
        ids.append(candidate->id());
    return ids;
}

bool OssLayerShaderModelManager::matchingShaderModelNodePair(OssSnBaseNode *a, OssSnBaseNode *b)
{
    auto *first = qobject_cast<OssSnMultiChannelGroupNode *>(a);
    auto *second = qobject_cast<OssSnMultiChannelGroupNode *>(b);
    return first && second && first->shaderModel() && first->shaderModel() == second->shaderModel();
}
