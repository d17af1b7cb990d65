#include "nvh/vehicle/VehicleSignals.h"

#include <HelixDash/values/DataValueManager.h>

namespace VehicleSignals {

template <typename Value>
Value* Signal<Value>::find() const {
    return DataValueManager::instance().find<Value>(QLatin1String(name));
}

template struct Signal<RealDataValue>;
template struct Signal<IntDataValue>;
template struct Signal<BoolDataValue>;

}  // namespace VehicleSignals
