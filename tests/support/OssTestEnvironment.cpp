#include "OssTestEnvironment.h"

#include "OssDebug.h"
#include "OssSettings.h"

OssTestEnvironment::OssTestEnvironment()
{
    OssSettings::setStorageDirectory(m_settings.path());
    OssDebugSinks::setEchoToStandardError(qEnvironmentVariableIsSet("OSSA_TEST_VERBOSE"));
}

OssTestEnvironment::~OssTestEnvironment()
{
    OssSettings::setStorageDirectory(QString());
    OssDebugSinks::setEchoToStandardError(true);
}
