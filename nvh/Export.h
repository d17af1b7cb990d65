#pragma once

#include <QtGlobal>

#ifdef NVH_LIBRARY
// What the library offers to programs that link it.
#define NVH_EXPORT Q_DECL_EXPORT
#else
// What a program takes from the library.
#define NVH_EXPORT Q_DECL_IMPORT
#endif
