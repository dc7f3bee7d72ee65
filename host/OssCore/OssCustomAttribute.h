#pragma once

#include "OssCoreExport.h"

#include <QMetaType>
#include <QString>
#include <QVariant>

// A user attribute of a serialisable object: a named value with a display name and a visibility
// flag. A default-constructed attribute is invalid (it has no name).
class OSSCORE_EXPORT OssCustomAttribute
{
public:
    OssCustomAttribute() = default;
    OssCustomAttribute(const QString &name, const QVariant &value, const QString &prettyName = {},
                       bool visible = true);

    bool isValid() const { return !m_name.isEmpty(); }
    QString name() const { return m_name; }
    QString prettyName() const { return m_prettyName.isEmpty() ? m_name : m_prettyName; }
    void setPrettyName(const QString &prettyName) { m_prettyName = prettyName; }
    QVariant value() const { return m_value; }
    void setValue(const QVariant &value) { m_value = value; }
    // The value's type name ("int", "QString", "OssColor", ...).
    QString typeName() const;
    bool isVisible() const { return m_visible; }
    void setVisible(bool visible) { m_visible = visible; }

    bool operator==(const OssCustomAttribute &other) const;
    bool operator!=(const OssCustomAttribute &other) const { return !(*this == other); }

private:
    QString m_name;
    QString m_prettyName;
    QVariant m_value;
    bool m_visible = true;
};

Q_DECLARE_METATYPE(OssCustomAttribute)

// A user-enum value: a list of keys and the index of the current one.
class OSSCORE_EXPORT OssUserEnum
{
public:
    OssUserEnum() = default;
    OssUserEnum(const QStringList &keys, int current);

    QStringList keys() const { return m_keys; }
    int currentValue() const { return m_current; }
    QString currentKey() const;
    // Ignores an index outside the key list and returns false.
    bool setCurrentValue(int index);
    QString toString() const;
    static OssUserEnum fromString(const QString &text, bool *ok = nullptr);

    bool operator==(const OssUserEnum &other) const;
    bool operator!=(const OssUserEnum &other) const { return !(*this == other); }

private:
    QStringList m_keys;
    int m_current = 0;
};

Q_DECLARE_METATYPE(OssUserEnum)

// True when the text is not empty and has only letters, digits and underscores.
OSSCORE_EXPORT bool OssIsAlphanumericUnderscore(const QString &text);
