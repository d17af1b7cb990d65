#include "nvh/capture/ErrorLog.h"

#include <HelixDash/services/Logger.h>

#include <cerrno>
#include <cstring>

void logErrorNumber(const QObject* sender, const QString& message) {
    const int number = errno;
    Logger(sender, "ERROR") << message << " " << number << strerror(number);
}
