#include "HelixDash/values/DataValueManager.h"

#include <algorithm>
#include <iterator>

namespace {

std::unique_ptr<DataValue> makeValue(const QString& name, DataValueManager::Type type) {
    switch (type) {
        case DataValueManager::Type::Bool:
            return std::make_unique<BoolDataValue>(name);
        case DataValueManager::Type::Int:
            return std::make_unique<IntDataValue>(name);
        case DataValueManager::Type::Real:
            break;
    }
    return std::make_unique<RealDataValue>(name);
}

}  // namespace

DataValueManager& DataValueManager::instance() {
    static DataValueManager manager;
    return manager;
}

DataValue* DataValueManager::find(const QString& name) const {
    const DataValue::ConditionalLocker locker(nullptr);
    return mByName.value(name, nullptr);
}

DataValue* DataValueManager::add(const QString& name, Type type) {
    auto made = makeValue(name, type);
    const DataValue::ConditionalLocker locker(nullptr);
    if (DataValue* present = mByName.value(name, nullptr))
        return present->metaObject() == made->metaObject() ? present : nullptr;
    mByName.insert(name, made.get());
    mValues.push_back(std::move(made));
    return mValues.back().get();
}

std::vector<DataValue*> DataValueManager::values() const {
    const DataValue::ConditionalLocker locker(nullptr);
    std::vector<DataValue*> all;
    std::transform(mValues.begin(), mValues.end(), std::back_inserter(all),
                   [](const auto& value) { return value.get(); });
    return all;
}
