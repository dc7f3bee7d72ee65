#include "OssChannel.h"

#include "OssShadingGroup.h"

OssChannel::OssChannel(const QString &name, QObject *parent)
    : OssSerializableObject(parent), m_name(name)
{}

OssShadingGroup *OssChannel::shadingGroup() const
{
    return qobject_cast<OssShadingGroup *>(parent());
}
