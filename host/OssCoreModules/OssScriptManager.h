#pragma once

#include "OssCoreModulesExport.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

namespace Ossa {
class API;
}

namespace OssScriptException {
Q_NAMESPACE_EXPORT(OSSCOREMODULES_EXPORT)
// Kinds of script errors; script bindings name their exceptions after them.
enum Type
{
    // The object a script object wraps is gone.
    ObjectNotValid = 0,
    InvalidArgument = 1,
    InvalidType = 2,
    NotFound = 3,
    NotSupported = 4,
    IOError = 5,
    // A needed object cannot be obtained or made, or a wrong object was passed.
    ObjectUnavailable = 11,
    OperationFailed = 12,
    // An argument is outside its allowed range.
    OutOfRange = 13,
};
Q_ENUM_NS(Type)
} // namespace OssScriptException

// Makes the script object of one internal class. Owned by the script manager.
class OSSCOREMODULES_EXPORT OssAPIFactory
{
public:
    virtual Ossa::API *create(QObject *internalObject) = 0;
    virtual ~OssAPIFactory();
    // The internal class name served ("OssPalette") and the script class made ("Ossa::...").
    virtual QString internalClassName() const = 0;
    virtual QString scriptClassName() const = 0;
};

// One error reported to scripts.
struct OssScriptErrorReport
{
    int type = 0;
    QString sourceFile;
    int line = 0;
    QString message;
};

// The host's scripting registry: factories by internal class name, the script object already
// made for each internal object, and the error channel scripts read.
class OSSCOREMODULES_EXPORT OssScriptManager : public QObject
{
    Q_OBJECT
public:
    static OssScriptManager *instance();
    ~OssScriptManager() override;

    // Takes ownership. A second factory for the same internal class replaces the first.
    void registerAPIFactory(OssAPIFactory *factory);
    OssAPIFactory *factory(const QString &internalClassName) const;
    // The factory for an object's class, or for its nearest base class that has one.
    OssAPIFactory *factoryFor(const QObject *internalObject) const;
    QStringList factoryClassNames() const;

    // The script object registered for an internal object, or null.
    Ossa::API *existingAPI(const QObject *internalObject) const;
    // Takes ownership of Api and remembers it as the script object of its internal object.
    void registerAPI(Ossa::API *api);
    // The registered script object of InternalObject, made with its factory when there is none
    // yet; null when no factory serves the class or the made object is null.
    Ossa::API *apiFor(QObject *internalObject);
    // Takes back a script object (a null one that a factory made, or one no longer needed).
    void deleteAPI(Ossa::API *api);

    // The error channel.
    void reportError(int type, const QString &sourceFile, int line, const QString &message);
    QList<OssScriptErrorReport> errors() const { return m_errors; }
    OssScriptErrorReport lastError() const;
    void clearErrors() { m_errors.clear(); }

signals:
    void scriptError(int type, const QString &message);
    // After a factory is registered, with the internal class it serves.
    void apiFactoryRegistered(const QString &internalClassName);

private:
    explicit OssScriptManager(QObject *parent = nullptr);

    QHash<QString, OssAPIFactory *> m_factories;
    QHash<const QObject *, QPointer<Ossa::API>> m_apis;
    QList<OssScriptErrorReport> m_errors;
};

// Reports a script error with a printf-style message through the script manager.
OSSCOREMODULES_EXPORT void OssScriptError(int type, const char *sourceFile, int line,
                                          const char *format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 4, 5)))
#endif
    ;
