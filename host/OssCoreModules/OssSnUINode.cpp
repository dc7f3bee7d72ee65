#include "OssSnUINode.h"

#include "OssSnNodeType.h"

#include <OssCustomAttribute.h>

#include <QStringList>

void OssSnUINode::applyType(const OssSnNodeType &type)
{
    OssSnBaseNode::applyType(type);
    // Title, label, colour and z-order stay user attributes but are not parameters.
    static const QStringList shown{QStringLiteral("TitleText"), QStringLiteral("BackgroundColor"),
                                   QStringLiteral("ZOrder"), QStringLiteral("Label")};
    QList<OssCustomAttribute> kept;
    QList<OssCustomAttribute> display;
    for (const OssCustomAttribute &attribute : nodeAttributes())
        (shown.contains(attribute.name()) ? display : kept).append(attribute);
    setNodeAttributesDirect(kept);
    for (const OssCustomAttribute &attribute : qAsConst(display))
        setUserAttribute(attribute, false);
}
