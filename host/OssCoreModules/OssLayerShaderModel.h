#pragma once

#include "OssCoreModulesExport.h"

#include <QList>
#include <QObject>
#include <QString>

class OssSnBaseNode;

// One stream of a shader model (a channel such as "Diffuse Color").
class OSSCOREMODULES_EXPORT OssLayerShaderModelInput
{
public:
    OssLayerShaderModelInput(const QString &streamName, const QString &type)
        : m_streamName(streamName), m_type(type)
    {}
    QString streamName() const { return m_streamName; }
    QString type() const { return m_type; }

private:
    QString m_streamName;
    QString m_type;
};

// The channels a multi-channel node carries.
class OSSCOREMODULES_EXPORT OssLayerShaderModel : public QObject
{
    Q_OBJECT
public:
    OssLayerShaderModel(const QString &id, const QList<OssLayerShaderModelInput> &inputs,
                        QObject *parent = nullptr);
    QString id() const { return m_id; }
    QList<OssLayerShaderModelInput> inputList() const { return m_inputs; }
    // The input of a stream name, or the one at an index; null when there is none.
    const OssLayerShaderModelInput *input(const QString &streamName) const;
    const OssLayerShaderModelInput *input(int index) const;

private:
    QString m_id;
    QList<OssLayerShaderModelInput> m_inputs;
};

// The shader models the host knows, made from the layer shader types of the catalogue.
class OSSCOREMODULES_EXPORT OssLayerShaderModelManager : public QObject
{
    Q_OBJECT
public:
    static OssLayerShaderModelManager *instance();
    // The model of a layer shader type ("Surface" for "Shaders/Surface"), or null.
    OssLayerShaderModel *model(const QString &id) const;
    OssLayerShaderModel *defaultModel() const { return model(QStringLiteral("Surface")); }
    QStringList modelIds() const;
    // True when both nodes are multi-channel nodes whose shader models are the same.
    static bool matchingShaderModelNodePair(OssSnBaseNode *a, OssSnBaseNode *b);

private:
    explicit OssLayerShaderModelManager(QObject *parent = nullptr);
    void rebuild();
    QList<OssLayerShaderModel *> m_models;
};
