#include "OssCustomAttribute.h"

#include "OssColor.h"

#include <QStringList>

namespace {
const int customAttributeTypeId = qRegisterMetaType<OssCustomAttribute>("OssCustomAttribute");
const int userEnumTypeId = qRegisterMetaType<OssUserEnum>("OssUserEnum");
} // namespace

OssCustomAttribute::OssCustomAttribute(const QString &name, const QVariant &value,
                                       const QString &prettyName, bool visible)
    : m_name(name), m_prettyName(prettyName), m_value(value), m_visible(visible)
{}

QString OssCustomAttribute::typeName() const
{
    const char *name = m_value.typeName();
    return name ? QString::fromLatin1(name) : QString();
}

bool OssCustomAttribute::operator==(const OssCustomAttribute &other) const
{
    if (m_name != other.m_name || prettyName() != other.prettyName() ||
        m_visible != other.m_visible || m_value.userType() != other.m_value.userType())
        return false;
    // User types have no registered comparison; compare them through their own operators.
    if (m_value.userType() == qMetaTypeId<OssColor>())
        return m_value.value<OssColor>() == other.m_value.value<OssColor>();
    if (m_value.userType() == qMetaTypeId<OssUserEnum>())
        return m_value.value<OssUserEnum>() == other.m_value.value<OssUserEnum>();
    return m_value == other.m_value;
}

OssUserEnum::OssUserEnum(const QStringList &keys, int current) : m_keys(keys), m_current(0)
{
    setCurrentValue(current);
}

QString OssUserEnum::currentKey() const
{
    return m_keys.value(m_current);
}

bool OssUserEnum::setCurrentValue(int index)
{
    if (index < 0 || index >= m_keys.size())
        return false;
    m_current = index;
    return true;
}

// Text form: the current index, a colon, then the keys separated by "|" ("1:Disable|Enable").
QString OssUserEnum::toString() const
{
    return QString::number(m_current) + QLatin1Char(':') + m_keys.join(QLatin1Char('|'));
}

OssUserEnum OssUserEnum::fromString(const QString &text, bool *ok)
{
    if (ok)
        *ok = false;
    const int colon = text.indexOf(QLatin1Char(':'));
    if (colon <= 0)
        return OssUserEnum();
    bool isNumber = false;
    const int current = text.left(colon).toInt(&isNumber);
    const QString keys = text.mid(colon + 1);
    if (!isNumber || keys.isEmpty())
        return OssUserEnum();
    OssUserEnum result;
    result.m_keys = keys.split(QLatin1Char('|'));
    if (!result.setCurrentValue(current))
        return OssUserEnum();
    if (ok)
        *ok = true;
    return result;
}

bool OssUserEnum::operator==(const OssUserEnum &other) const
{
    return m_keys == other.m_keys && m_current == other.m_current;
}

bool OssIsAlphanumericUnderscore(const QString &text)
{
    if (text.isEmpty())
        return false;
    for (const QChar c : text) {
        if (!c.isLetterOrNumber() && c != QLatin1Char('_'))
            return false;
    }
    return true;
}
