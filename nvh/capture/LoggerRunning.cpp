#include "nvh/capture/LoggerRunning.h"

std::atomic<bool> loggerRunning{false};
