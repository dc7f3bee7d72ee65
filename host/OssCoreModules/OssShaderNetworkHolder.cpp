#include "OssShaderNetworkHolder.h"

OssShaderNetworkHolder::~OssShaderNetworkHolder() = default;
