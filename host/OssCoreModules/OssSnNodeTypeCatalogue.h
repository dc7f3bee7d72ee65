#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnNodeType.h"

#include <QHash>
#include <QObject>
#include <QSharedPointer>
#include <QStringList>

// The registry of creatable node types, filled from the description files under the host's
// node-type folder and by types registered at run time.
class OSSCOREMODULES_EXPORT OssSnNodeTypeCatalogue : public QObject
{
    Q_OBJECT
public:
    // The host's catalogue; loads the node-type folder on first use when it is still empty.
    static OssSnNodeTypeCatalogue *instance();

    // An empty catalogue of its own (the host's is instance()).
    explicit OssSnNodeTypeCatalogue(QObject *parent = nullptr);
    ~OssSnNodeTypeCatalogue() override;

    // The node classes a description may name in "Class".
    static QStringList knownNodeClasses();
    // The value types an attribute may have, and the types a port may have.
    static QStringList knownAttributeTypes();
    static QStringList knownPortTypes();

    // Parses one description; false with "<file>: <problem>" in *error (with the line, and the
    // column for XML errors). *type is left alone on failure.
    static bool parse(const QString &text, const QString &fileName, OssSnNodeType *type,
                      QString *error);
    // Parses a description read as bytes (a file, an archive's payload); bytes that are not
    // UTF-8 text are refused, never read with replacement characters.
    static bool parseBytes(const QByteArray &bytes, const QString &fileName, OssSnNodeType *type,
                           QString *error);
    // Reads every *.xml under dir recursively, in sorted path order. Bad files are skipped and
    // their errors returned (and logged); returns the number loaded. Emits
    // registeredNodePopulationChanged() once when anything was loaded.
    int loadDirectory(const QString &dir, QStringList *errors = nullptr);
    // Refuses an empty or registered path key and a registered version UUID.
    bool addType(const OssSnNodeType &type, QString *error = nullptr);
    bool addTypeFromFile(const QString &path, QString *error = nullptr);
    bool removeType(const QString &pathKey);
    void clear();

    bool contains(const QString &pathKey) const;
    // Null when the path key is unknown.
    const OssSnNodeType *type(const QString &pathKey) const;
    int count() const { return m_order.size(); }
    // All path keys, in registration order.
    QStringList nodePathKeys() const;
    // Path keys of the types creatable in a node graph, in registration order.
    QStringList nodeGraphPathKeys() const;
    // "" for an unknown path key.
    QString nodeMenuPath(const QString &pathKey) const;
    QString versionUuidForPathKey(const QString &pathKey) const;
    // The installed definition's hash and date for a version UUID; "" when none.
    QString hashForVersionUuid(const QString &uuid) const;
    QString dateForVersionUuid(const QString &uuid) const;
    const OssSnNodeType *typeForVersionUuid(const QString &uuid) const;

signals:
    void registeredNodePopulationChanged();

private:
    // Registers without announcing; false with the reason in *error.
    bool insert(const OssSnNodeType &type, QString *error);
    // Reads and parses one file.
    static bool readFile(const QString &path, OssSnNodeType *type, QString *error);

    QStringList m_order;
    QHash<QString, QSharedPointer<const OssSnNodeType>> m_types;
    // Version UUID to path key, for the types that have one.
    QHash<QString, QString> m_byVersionUuid;
};
