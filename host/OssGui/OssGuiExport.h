#pragma once

#include <QtGlobal>

#if defined(OSSGUI_LIBRARY)
#define OSSGUI_EXPORT Q_DECL_EXPORT
#else
#define OSSGUI_EXPORT Q_DECL_IMPORT
#endif
