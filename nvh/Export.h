#pragma once

#include <QtGlobal>

#ifdef NVH_LIBRARY
#define NVH_EXPORT Q_DECL_EXPORT
#else
#define NVH_EXPORT Q_DECL_IMPORT
#endif
