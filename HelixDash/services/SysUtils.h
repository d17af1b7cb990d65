#pragma once

#include <HelixDash/Export.h>

#include <QString>

// Facts about this vehicle.
class HELIXDASH_EXPORT SysUtils {
public:
    // Vehicle identification number, 17 characters on a road vehicle; empty while the host has set none. UI thread.
    static QString vin();
    // For the host.
    static void setVin(const QString& vin);
};
