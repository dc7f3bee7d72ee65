#include "OssSnScriptObjects.h"

#include "NodeGraphPalette.h"
#include "NodeGraphView.h"

#include <OssScriptManager.h>
#include <OssaAPI.h>

#include <QList>
#include <QMetaType>

namespace {

class OssOssPaletteNodeGraphPaletteAPIFactory : public OssAPIFactory
{
public:
    Ossa::API *create(QObject *internalObject) override
    {
        return new Ossa::NodeGraphPalette(internalObject);
    }
    ~OssOssPaletteNodeGraphPaletteAPIFactory() override = default;
    QString internalClassName() const override { return QStringLiteral("OssPalette"); }
    QString scriptClassName() const override { return QStringLiteral("Ossa::NodeGraphPalette"); }
};

class OssOssShaderNetworkViewNodeGraphViewAPIFactory : public OssAPIFactory
{
public:
    Ossa::API *create(QObject *internalObject) override
    {
        return new Ossa::NodeGraphView(internalObject);
    }
    ~OssOssShaderNetworkViewNodeGraphViewAPIFactory() override = default;
    QString internalClassName() const override { return QStringLiteral("OssShaderNetworkView"); }
    QString scriptClassName() const override { return QStringLiteral("Ossa::NodeGraphView"); }
};

} // namespace

namespace OssSnScriptObjects {

void registerFactories()
{
    // Script bindings look slot types up by name: make the list of views known.
    qRegisterMetaType<Ossa::NodeGraphView *>();
    qRegisterMetaType<QList<Ossa::NodeGraphView *>>();
    OssScriptManager *manager = OssScriptManager::instance();
    manager->registerAPIFactory(new OssOssPaletteNodeGraphPaletteAPIFactory);
    manager->registerAPIFactory(new OssOssShaderNetworkViewNodeGraphViewAPIFactory);
}

Ossa::API *scriptObjectFor(QObject *Internal, const char *ClassName)
{
    if (!Internal)
        return nullptr;
    OssScriptManager *manager = OssScriptManager::instance();
    Ossa::API *existing = manager->existingAPI(Internal);
    if (existing && existing->inherits(ClassName))
        return existing;
    OssAPIFactory *factory = manager->factoryFor(Internal);
    if (!factory)
        return nullptr;
    Ossa::API *made = factory->create(Internal);
    if (!made)
        return nullptr;
    if (made->isNull() || !made->inherits(ClassName)) {
        manager->deleteAPI(made);
        return nullptr;
    }
    manager->registerAPI(made);
    return made;
}

} // namespace OssSnScriptObjects
