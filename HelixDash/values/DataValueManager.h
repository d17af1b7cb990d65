#pragma once

#include <HelixDash/values/TypedDataValues.h>

#include <memory>
#include <vector>

// All data values of the vehicle, found by name. The values are made by the host, belong to the manager and live until
// the process ends; they belong to the thread that added them (the UI thread).
class HELIXDASH_EXPORT DataValueManager {
public:
    enum class Type { Bool, Int, Real };

    static DataValueManager& instance();

    // Null if there is no value of that name. Any thread, as soon as the host has added its values.
    DataValue* find(const QString& name) const;
    // The same with the type; null too if the value is of another type.
    template <typename Value>
    Value* find(const QString& name) const {
        return qobject_cast<Value*>(find(name));
    }

    // Finds the value or makes an invalid one. Null if there is one of another type. UI thread.
    DataValue* add(const QString& name, Type type);

    // In the order in which they were added.
    std::vector<DataValue*> values() const;

    Q_DISABLE_COPY(DataValueManager)

private:
    DataValueManager() = default;

    std::vector<std::unique_ptr<DataValue>> mValues;
    QHash<QString, DataValue*> mByName;
};
