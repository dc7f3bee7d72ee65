#include "OssScriptManager.h"

#include "OssDebug.h"
#include "OssaAPI.h"

#include <QMetaObject>

#include <cstdarg>
#include <cstdio>
#include <vector>

OssAPIFactory::~OssAPIFactory() = default;

OssScriptManager *OssScriptManager::instance()
{
    static OssScriptManager *manager = new OssScriptManager;
    return manager;
}

OssScriptManager::OssScriptManager(QObject *parent) : QObject(parent)
{
    Ossa::registerHostScriptTypes(this);
}

OssScriptManager::~OssScriptManager()
{
    qDeleteAll(m_factories);
}

void OssScriptManager::registerAPIFactory(OssAPIFactory *factory)
{
    if (!factory)
        return;
    const QString name = factory->internalClassName();
    OssAPIFactory *previous = m_factories.value(name);
    if (previous == factory)
        return;
    m_factories.insert(name, factory);
    delete previous;
    emit apiFactoryRegistered(name);
}

OssAPIFactory *OssScriptManager::factory(const QString &internalClassName) const
{
    return m_factories.value(internalClassName);
}

OssAPIFactory *OssScriptManager::factoryFor(const QObject *internalObject) const
{
    if (!internalObject)
        return nullptr;
    for (const QMetaObject *meta = internalObject->metaObject(); meta; meta = meta->superClass()) {
        if (OssAPIFactory *found = m_factories.value(QString::fromLatin1(meta->className())))
            return found;
    }
    return nullptr;
}

QStringList OssScriptManager::factoryClassNames() const
{
    QStringList names = m_factories.keys();
    names.sort();
    return names;
}

Ossa::API *OssScriptManager::existingAPI(const QObject *internalObject) const
{
    return m_apis.value(internalObject).data();
}

void OssScriptManager::registerAPI(Ossa::API *api)
{
    if (!api || api->isNull())
        return;
    api->setParent(this);
    QObject *internal = api->internalObject();
    m_apis.insert(internal, api);
    // A destroyed internal object leaves its script object empty; forget the pairing.
    connect(internal, &QObject::destroyed, this, [this, internal] { m_apis.remove(internal); });
}

Ossa::API *OssScriptManager::apiFor(QObject *internalObject)
{
    if (!internalObject)
        return nullptr;
    if (Ossa::API *existing = existingAPI(internalObject))
        return existing;
    OssAPIFactory *maker = factoryFor(internalObject);
    if (!maker)
        return nullptr;
    Ossa::API *api = maker->create(internalObject);
    if (!api)
        return nullptr;
    if (api->isNull()) {
        deleteAPI(api);
        return nullptr;
    }
    registerAPI(api);
    return api;
}

void OssScriptManager::deleteAPI(Ossa::API *api)
{
    if (!api)
        return;
    for (auto it = m_apis.begin(); it != m_apis.end();) {
        if (it.value() == api)
            it = m_apis.erase(it);
        else
            ++it;
    }
    delete api;
}

void OssScriptManager::reportError(int type, const QString &sourceFile, int line,
                                   const QString &message)
{
    m_errors.append(OssScriptErrorReport{type, sourceFile, line, message});
    OssDebug(sourceFile.toUtf8().constData(), line, "[ !! ] Script error %d: %s", type,
             message.toUtf8().constData());
    emit scriptError(type, message);
}

OssScriptErrorReport OssScriptManager::lastError() const
{
    return m_errors.isEmpty() ? OssScriptErrorReport() : m_errors.last();
}

void OssScriptError(int type, const char *sourceFile, int line, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    va_list measure;
    va_copy(measure, args);
    const int length = std::vsnprintf(nullptr, 0, format, measure);
    va_end(measure);
    QString message;
    if (length >= 0) {
        std::vector<char> buffer(static_cast<size_t>(length) + 1);
        std::vsnprintf(buffer.data(), buffer.size(), format, args);
        message = QString::fromUtf8(buffer.data(), length);
    }
    va_end(args);
    OssScriptManager::instance()->reportError(type, QString::fromUtf8(sourceFile), line, message);
}
