#include "OssImageList.h"

#include <QStringList>

QString OssImageList::toString() const
{
    QStringList parts;
    for (const OssImageUniqueId &id : m_ids)
        parts.append(id.toString());
    return parts.join(QLatin1Char('\n'));
}

OssImageList OssImageList::fromString(const QString &text)
{
    return OssImageList(OssImageUniqueId::imageIdListFromString(text));
}

void OssImageList::registerType()
{
    static const bool registered = [] {
        qRegisterMetaType<OssImageList>("OssImageList");
        qRegisterMetaType<OssImageUniqueId>("OssImageUniqueId");
        QMetaType::registerConverter<OssImageList, QString>(&OssImageList::toString);
        QMetaType::registerConverter<QString, OssImageList>(&OssImageList::fromString);
        QMetaType::registerEqualsComparator<OssImageList>();
        return true;
    }();
    Q_UNUSED(registered);
}
