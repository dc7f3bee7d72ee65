#include "OssGeoImageSet.h"

#include "OssEntity.h"

OssGeoImageSet::OssGeoImageSet(const QString &name, QObject *parent)
    : OssSerializableObject(parent), m_name(name)
{}

OssEntity *OssGeoImageSet::entity() const
{
    return qobject_cast<OssEntity *>(parent());
}

void OssGeoImageSet::setImageSet(OssChannel *imageSet)
{
    if (m_imageSet == imageSet)
        return;
    m_imageSet = imageSet;
    m_imageSetName = imageSet ? imageSet->name() : QString();
    emit imageSetChanged(imageSet);
}
