#pragma once

#include <HelixDash/services/LocationManager.h>
#include <HelixDash/values/DataValueManager.h>

#include <QHostAddress>
#include <QString>
#include <QVariant>

#include <optional>
#include <vector>

class QCommandLineParser;

// A data value as a command line gives it: NAME=true, NAME=42, NAME=4.5 or NAME=real:invalid.
struct ValueSetting {
    QString name;
    DataValueManager::Type type = DataValueManager::Type::Real;
    QVariant value;  // invalid for an invalid value

    // Nothing, and why, if the text says no value.
    static std::optional<ValueSetting> parse(const QString& text, QString* error);

    // Sets the data value, which is made if there is none; false with a reason if it is of another type. UI thread.
    bool apply(QString* error) const;
};

// What the programs that host an application or its engine are told alike.
//
//     QCommandLineParser parser;
//     HostOptions::addTo(parser);
//     …
//     QString error;
//     const auto options = HostOptions::read(parser, &error);   // error: "--vin: …", one line; the program ends with 2
struct HostOptions {
    QString configFile;  // empty if not given
    QString traceFile;   // empty if not given
    QString logFile;     // empty: standard error
    QString vin;
    Location position;
    QHostAddress gateway;  // IPv4
    std::vector<ValueSetting> settings;

    static void addTo(QCommandLineParser& parser);
    // Checks what can be known without opening a file.
    static std::optional<HostOptions> read(const QCommandLineParser& parser, QString* error);
};
