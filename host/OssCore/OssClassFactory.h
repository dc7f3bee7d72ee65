#pragma once

#include "OssCoreExport.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>

// Makes objects of one class by name. Subclasses are allocated once, with no parent, and passed
// to their own registerMe(); the factory manager keeps them for the life of the process.
class OSSCORE_EXPORT OssClassFactory : public QObject
{
    Q_OBJECT
public:
    OssClassFactory() = default;
    ~OssClassFactory() override;
    // Creates the object for Object (the node a context belongs to, for instance).
    virtual QPointer<QObject> create(QObject *object) = 0;
    // The class name this factory answers to.
    virtual QString className() const = 0;
    // Same text as className().
    virtual QString name() const { return className(); }

    // Registers Factory with the manager (Factory is normally this very object).
    void registerMe(OssClassFactory *factory);
};

// Registry of class factories by class name.
class OSSCORE_EXPORT OssClassFactoryManager : public QObject
{
    Q_OBJECT
public:
    static OssClassFactoryManager *instance();

    // Takes ownership. A second factory for the same name replaces the first (which is deleted).
    void registerFactory(OssClassFactory *factory);
    bool hasFactory(const QString &className) const;
    OssClassFactory *factory(const QString &className) const;
    QStringList classNames() const;
    // The created object, or an empty pointer for an unknown name.
    QPointer<QObject> create(const QString &className, QObject *object);

private:
    explicit OssClassFactoryManager(QObject *parent = nullptr);
    QHash<QString, OssClassFactory *> m_factories;
};

// Declares and defines the factory of ClassName, named Oss<ClassName>ClassFactory as the host's
// convention has it. ClassName must be constructible from a QObject* parent.
#define OSS_DECLARE_CLASS_FACTORY(ClassName)                                                       \
    class Oss##ClassName##ClassFactory : public OssClassFactory                                    \
    {                                                                                              \
    public:                                                                                        \
        QPointer<QObject> create(QObject *object) override                                         \
        {                                                                                          \
            return QPointer<QObject>(new ClassName(object));                                       \
        }                                                                                          \
        QString className() const override { return QStringLiteral(#ClassName); }                  \
        QString name() const override { return className(); }                                      \
    };
