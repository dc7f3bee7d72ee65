#include "OssPreferenceManager.h"

#include "OssGroupParameterObject.h"

#include <QMetaMethod>
#include <QMetaProperty>

namespace {

QMetaProperty propertyOf(const QObject *object, const QString &key)
{
    if (!object)
        return QMetaProperty();
    const QMetaObject *meta = object->metaObject();
    return meta->property(meta->indexOfProperty(key.toLatin1().constData()));
}

// Calls a slot without arguments by name and returns its result; invalid when there is none.
QVariant callGetter(QObject *object, const QString &method)
{
    if (!object)
        return QVariant();
    const QMetaObject *meta = object->metaObject();
    const int index = meta->indexOfMethod((method + QStringLiteral("()")).toLatin1().constData());
    if (index < 0)
        return QVariant();
    const QMetaMethod metaMethod = meta->method(index);
    const int returnType = metaMethod.returnType();
    if (returnType == QMetaType::Void || returnType == QMetaType::UnknownType)
        return QVariant();
    QVariant result(returnType, nullptr);
    QGenericReturnArgument returnArgument(metaMethod.typeName(), result.data());
    if (!metaMethod.invoke(object, Qt::DirectConnection, returnArgument))
        return QVariant();
    return result;
}

QString capitalised(const QString &key)
{
    return key.isEmpty() ? key : key.left(1).toUpper() + key.mid(1);
}

} // namespace

bool OssPreference::isValid() const
{
    return object && propertyOf(object, key).isValid();
}

QVariant OssPreference::value() const
{
    const QMetaProperty property = propertyOf(object, key);
    return property.isValid() ? property.read(object) : QVariant();
}

bool OssPreference::setValue(const QVariant &value) const
{
    const QMetaProperty property = propertyOf(object, key);
    return property.isValid() && property.isWritable() && property.write(object, value);
}

bool OssPreference::reset() const
{
    if (!object)
        return false;
    const QByteArray slot =
        (QStringLiteral("reset") + capitalised(key) + QStringLiteral("()")).toLatin1();
    const int index = object->metaObject()->indexOfMethod(slot.constData());
    if (index < 0)
        return false;
    return object->metaObject()->method(index).invoke(object, Qt::DirectConnection);
}

QString OssPreference::label() const
{
    if (const auto *parameters = dynamic_cast<const OssGroupParameterObject *>(object.data()))
        return parameters->prettyPropertyName(key);
    return OssGroupParameterObject().prettyPropertyName(key);
}

QString OssPreference::toolTip() const
{
    return callGetter(object, key + QStringLiteral("Tooltip")).toString();
}

QStringList OssPreference::allowedValues() const
{
    const QVariant list = callGetter(object, key + QStringLiteral("List"));
    if (list.isValid())
        return list.toStringList();
    const QMetaProperty property = propertyOf(object, key);
    if (property.isEnumType()) {
        const QMetaEnum enumerator = property.enumerator();
        QStringList keys;
        for (int i = 0; i < enumerator.keyCount(); ++i)
            keys.append(QString::fromLatin1(enumerator.key(i)));
        return keys;
    }
    return {};
}

QVariant OssPreference::defaultValue() const
{
    return callGetter(object, key + QStringLiteral("Default"));
}

OssPreference::Editor OssPreference::editor() const
{
    const QMetaProperty property = propertyOf(object, key);
    if (callGetter(object, key + QStringLiteral("List")).isValid())
        return Editor::ComboBox;
    if (property.isEnumType())
        return Editor::EnumComboBox;
    switch (property.userType()) {
    case QMetaType::Bool:
        return Editor::CheckBox;
    case QMetaType::Int:
        return Editor::SpinBox;
    case QMetaType::Double:
    case QMetaType::Float:
        return Editor::DoubleSpinBox;
    default:
        return Editor::LineEdit;
    }
}

QByteArray OssPreference::notifySignal() const
{
    const QMetaProperty property = propertyOf(object, key);
    if (!property.hasNotifySignal())
        return QByteArray();
    // The form QObject::connect expects from the SIGNAL() macro.
    return QByteArray("2") + property.notifySignal().methodSignature();
}

OssPreferenceManager *OssPreferenceManager::instance()
{
    static OssPreferenceManager *manager = new OssPreferenceManager;
    return manager;
}

OssPreferenceManager::OssPreferenceManager(QObject *parent) : QObject(parent) {}

bool OssPreferenceManager::registerPreference(const QString &page, const QString &group,
                                              QObject *object, const QString &key)
{
    if (!propertyOf(object, key).isValid())
        return false;
    m_preferences.append(OssPreference{page, group, object, key});
    emit preferenceRegistered(page, group, key);
    return true;
}

QStringList OssPreferenceManager::pages() const
{
    QStringList result;
    for (const OssPreference &preference : m_preferences) {
        if (preference.object && !result.contains(preference.page))
            result.append(preference.page);
    }
    return result;
}

QStringList OssPreferenceManager::groups(const QString &page) const
{
    QStringList result;
    for (const OssPreference &preference : m_preferences) {
        if (preference.object && preference.page == page && !result.contains(preference.group))
            result.append(preference.group);
    }
    return result;
}

QList<OssPreference> OssPreferenceManager::preferences(const QString &page,
                                                       const QString &group) const
{
    QList<OssPreference> result;
    for (const OssPreference &preference : m_preferences) {
        if (preference.object && preference.page == page && preference.group == group)
            result.append(preference);
    }
    return result;
}

QList<OssPreference> OssPreferenceManager::preferences() const
{
    QList<OssPreference> result;
    for (const OssPreference &preference : m_preferences) {
        if (preference.object)
            result.append(preference);
    }
    return result;
}

OssPreference OssPreferenceManager::find(const QString &page, const QString &key) const
{
    for (const OssPreference &preference : m_preferences) {
        if (preference.object && preference.page == page && preference.key == key)
            return preference;
    }
    return OssPreference();
}

void OssPreferenceManager::savePreferences()
{
    QList<QObject *> saved;
    for (const OssPreference &preference : m_preferences) {
        QObject *object = preference.object;
        if (!object || saved.contains(object))
            continue;
        saved.append(object);
        const int index = object->metaObject()->indexOfMethod("savePreferences()");
        if (index >= 0)
            object->metaObject()->method(index).invoke(object, Qt::DirectConnection);
    }
}
