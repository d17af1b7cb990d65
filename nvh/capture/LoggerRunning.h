#pragma once

#include "nvh/Export.h"

#include <atomic>

// The run condition of the CAN client: set by the engine (UI thread) just before it starts the client's thread,
// cleared to ask the client to end; the client polls it.
NVH_EXPORT extern std::atomic<bool> loggerRunning;
