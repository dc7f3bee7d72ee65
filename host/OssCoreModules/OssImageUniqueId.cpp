#include "OssImageUniqueId.h"

#include <QRegularExpression>

OssImageUniqueId OssImageUniqueId::fromString(const QString &text)
{
    return OssImageUniqueId(QUuid(text.trimmed()));
}

QList<OssImageUniqueId> OssImageUniqueId::imageIdListFromString(const QString &text)
{
    QList<OssImageUniqueId> ids;
    static const QRegularExpression separators(QStringLiteral("[\\n,]"));
    for (const QString &part : text.split(separators, Qt::SkipEmptyParts)) {
        const OssImageUniqueId id = fromString(part);
        if (id.isValid())
            ids.append(id);
    }
    return ids;
}
