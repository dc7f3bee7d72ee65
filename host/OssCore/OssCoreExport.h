#pragma once

#include <QtGlobal>

#if defined(OSSCORE_LIBRARY)
#define OSSCORE_EXPORT Q_DECL_EXPORT
#else
#define OSSCORE_EXPORT Q_DECL_IMPORT
#endif
