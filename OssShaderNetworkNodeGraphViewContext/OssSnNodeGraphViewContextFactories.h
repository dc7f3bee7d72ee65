#pragma once

#include <OssClassFactory.h>

#include "OssSnGeoChannelNodeGraphViewContext.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnUINodeGraphViewContext.h"

// The factories of the view-context classes, known to the host's class factory manager by the
// context class names the node descriptions use.
OSS_DECLARE_CLASS_FACTORY(OssSnNodeGraphViewContext)
OSS_DECLARE_CLASS_FACTORY(OssSnBakePointNodeGraphViewContext)
OSS_DECLARE_CLASS_FACTORY(OssSnGeoChannelNodeGraphViewContext)
OSS_DECLARE_CLASS_FACTORY(OssSnBaseTeleportNodeGraphViewContext)
OSS_DECLARE_CLASS_FACTORY(OssSnGroupNodeGraphViewContext)
OSS_DECLARE_CLASS_FACTORY(OssSnUINodeGraphViewContext)

namespace OssSnNodeGraphViewContextFactories {
// Allocates the six factories and registers each, in this order.
void registerAll();
} // namespace OssSnNodeGraphViewContextFactories
