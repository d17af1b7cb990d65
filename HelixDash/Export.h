#pragma once

#include <QtGlobal>

#ifdef HELIXDASH_LIBRARY
#define HELIXDASH_EXPORT Q_DECL_EXPORT
#else
#define HELIXDASH_EXPORT Q_DECL_IMPORT
#endif
