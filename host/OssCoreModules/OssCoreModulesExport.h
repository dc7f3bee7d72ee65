#pragma once

#include <QtGlobal>

#if defined(OSSCOREMODULES_LIBRARY)
#define OSSCOREMODULES_EXPORT Q_DECL_EXPORT
#else
#define OSSCOREMODULES_EXPORT Q_DECL_IMPORT
#endif
