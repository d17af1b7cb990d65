#pragma once

#include <HelixDash/Export.h>

#include <QString>

// One setting of the configuration: a key and what holds without it. value() asks the configuration each time, so a
// change of the file takes effect at the next use. Copies ask for the same key. Any thread; may be made before an
// application object exists.
//
//     const ConfigIntValue cTimeout("nvh/timeout_ms", 120000);
class HELIXDASH_EXPORT ConfigStringValue {
public:
    ConfigStringValue(const QString& key, const QString& defaultValue) : mKey(key), mDefault(defaultValue) {}
    QString value() const;

private:
    QString mKey;
    QString mDefault;
};

// A setting that is no whole number is reported in the log, and the default holds.
class HELIXDASH_EXPORT ConfigIntValue {
public:
    ConfigIntValue(const QString& key, int defaultValue) : mKey(key), mDefault(defaultValue) {}
    int value() const;

private:
    QString mKey;
    int mDefault;
};

// "true", "1", "false" and "0"; anything else is reported in the log, and the default holds.
class HELIXDASH_EXPORT ConfigBoolValue {
public:
    ConfigBoolValue(const QString& key, bool defaultValue) : mKey(key), mDefault(defaultValue) {}
    bool value() const;

private:
    QString mKey;
    bool mDefault;
};
