#include "OssSnImageSetNodeBase.h"

#include "OssChannel.h"
#include "OssShaderNetwork.h"
#include "OssShadingGroup.h"

#include <OssCustomAttribute.h>

void OssSnImageSetNodeBase::setImageSet(OssChannel *imageSet, bool notify)
{
    if (m_imageSet == imageSet)
        return;
    m_imageSet = imageSet;
    if (imageSet)
        m_imageSetName = imageSet->name();
    if (notify)
        emit imageSetChanged();
}

OssChannel *OssSnImageSetNodeBase::imageSet() const
{
    if (m_imageSet)
        return m_imageSet;
    const OssShaderNetwork *owner = network();
    const OssShadingGroup *group = owner ? owner->shadingGroup() : nullptr;
    return group && !m_imageSetName.isEmpty() ? group->channel(m_imageSetName) : nullptr;
}

QString OssSnImageSetNodeBase::imageSetName() const
{
    return m_imageSet ? m_imageSet->name() : m_imageSetName;
}

bool OssSnImageSetNodeBase::enablePropertiesBasedOnManagedByChannel()
{
    // The channel manages size and pixel type: they are shown read-only while a channel is
    // attached.
    const bool managed = m_imageSet != nullptr;
    for (const OssCustomAttribute &attribute : nodeAttributes())
        if (attribute.name() == QLatin1String("Width") ||
            attribute.name() == QLatin1String("Height") ||
            attribute.name() == QLatin1String("Depth"))
            setUserAttribute(OssCustomAttribute(QStringLiteral("_readOnly_") + attribute.name(),
                                                managed, QString(), false),
                             false);
    return managed;
}
