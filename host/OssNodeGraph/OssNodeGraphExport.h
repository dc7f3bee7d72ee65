#pragma once

#include <QtGlobal>

#if defined(OSSNODEGRAPH_LIBRARY)
#define OSSNODEGRAPH_EXPORT Q_DECL_EXPORT
#else
#define OSSNODEGRAPH_EXPORT Q_DECL_IMPORT
#endif
