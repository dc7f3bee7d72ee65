#pragma once

#include "OssCoreModulesExport.h"

class OssShaderNetwork;

// A mix-in for objects that show or act on one shader network.
class OSSCOREMODULES_EXPORT OssShaderNetworkHolder
{
public:
    virtual ~OssShaderNetworkHolder();
    virtual OssShaderNetwork *network() const { return m_heldNetwork; }
    virtual void setNetwork(OssShaderNetwork *network) { m_heldNetwork = network; }

private:
    OssShaderNetwork *m_heldNetwork = nullptr;
};
