#include "HelixDash/services/LocationManager.h"

LocationManager* LocationManager::instance() {
    static LocationManager manager;
    return &manager;
}
