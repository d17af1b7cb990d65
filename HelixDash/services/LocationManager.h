#pragma once

#include <HelixDash/Export.h>

#include <QtGlobal>

// WGS 84, degrees; north and east are positive.
struct Location {
    double latitude = 0.0;   // -90 to 90
    double longitude = 0.0;  // -180 to 180
};

// The vehicle's position. UI thread.
class HELIXDASH_EXPORT LocationManager {
public:
    static LocationManager* instance();

    Location currentLocation() const { return mLocation; }
    // For the host.
    void setCurrentLocation(Location location) { mLocation = location; }

    Q_DISABLE_COPY(LocationManager)

private:
    LocationManager() = default;
    Location mLocation;
};
