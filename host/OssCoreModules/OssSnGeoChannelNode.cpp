#include "OssSnGeoChannelNode.h"

void OssSnGeoChannelNode::setGeoChannelName(const QString &name)
{
    if (name == m_geoChannelName)
        return;
    m_geoChannelName = name;
    emit geoChannelNameChanged(name);
}

void OssSnGeoChannelNode::setImageSetValid(bool valid)
{
    if (valid == m_imageSetValid)
        return;
    m_imageSetValid = valid;
    emit imageSetValidChanged(valid);
}
