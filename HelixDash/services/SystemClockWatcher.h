#pragma once

#include <HelixDash/Export.h>

#include <QtGlobal>

// The vehicle's wall clock. Any thread.
class HELIXDASH_EXPORT SystemClockWatcher {
public:
    static SystemClockWatcher* instance();

    // Whole seconds since 1970-01-01 00:00 UTC.
    qint64 currentTimeUtcSecs() const;

    Q_DISABLE_COPY(SystemClockWatcher)

private:
    SystemClockWatcher() = default;
};
