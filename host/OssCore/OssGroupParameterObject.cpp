#include "OssGroupParameterObject.h"

OssGroupParameterObject::~OssGroupParameterObject() = default;

QString OssGroupParameterObject::prettyPropertyName(const QString &Name) const
{
    QString result;
    result.reserve(Name.size() + 4);
    for (int i = 0; i < Name.size(); ++i) {
        const QChar c = Name.at(i);
        if (i == 0) {
            result.append(c.toUpper());
            continue;
        }
        const QChar previous = Name.at(i - 1);
        const bool hump = c.isUpper() && (previous.isLower() || previous.isDigit());
        const bool acronymEnd =
            c.isUpper() && previous.isUpper() && i + 1 < Name.size() && Name.at(i + 1).isLower();
        if (c == QLatin1Char('_')) {
            result.append(QLatin1Char(' '));
            continue;
        }
        if (hump || acronymEnd)
            result.append(QLatin1Char(' '));
        result.append(c);
    }
    return result;
}
