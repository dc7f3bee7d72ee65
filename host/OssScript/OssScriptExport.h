#pragma once

#include <QtGlobal>

#if defined(OSSSCRIPT_LIBRARY)
#define OSSSCRIPT_EXPORT Q_DECL_EXPORT
#else
#define OSSSCRIPT_EXPORT Q_DECL_IMPORT
#endif
