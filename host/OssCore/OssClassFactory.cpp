#include "OssClassFactory.h"

#include <QStringList>

OssClassFactory::~OssClassFactory() = default;

void OssClassFactory::registerMe(OssClassFactory *factory)
{
    OssClassFactoryManager::instance()->registerFactory(factory);
}

OssClassFactoryManager *OssClassFactoryManager::instance()
{
    static OssClassFactoryManager *manager = new OssClassFactoryManager;
    return manager;
}

OssClassFactoryManager::OssClassFactoryManager(QObject *parent) : QObject(parent) {}

void OssClassFactoryManager::registerFactory(OssClassFactory *factory)
{
    if (!factory)
        return;
    const QString name = factory->className();
    OssClassFactory *previous = m_factories.value(name);
    if (previous == factory)
        return;
    factory->setParent(this);
    m_factories.insert(name, factory);
    delete previous;
}

bool OssClassFactoryManager::hasFactory(const QString &className) const
{
    return m_factories.contains(className);
}

OssClassFactory *OssClassFactoryManager::factory(const QString &className) const
{
    return m_factories.value(className);
}

QStringList OssClassFactoryManager::classNames() const
{
    QStringList names = m_factories.keys();
    names.sort();
    return names;
}

QPointer<QObject> OssClassFactoryManager::create(const QString &className, QObject *object)
{
    OssClassFactory *factory = m_factories.value(className);
    if (!factory)
        return QPointer<QObject>();
    return factory->create(object);
}
