#include "host/setup/HostOptions.h"

#include "host/values/ValueSetter.h"

#include <QCommandLineParser>
#include <QRegularExpression>

#include <array>
#include <cmath>

namespace {

const QString kConfig = QStringLiteral("config");
const QString kTrace = QStringLiteral("trace");
const QString kLog = QStringLiteral("log");
const QString kVin = QStringLiteral("vin");
const QString kPosition = QStringLiteral("position");
const QString kGateway = QStringLiteral("gateway");
const QString kSet = QStringLiteral("set");

// No vehicle can have it: an I is never part of a VIN.
const QString kDeskVin = QStringLiteral("DESK0TEST0VEHICLE");
const QString kDeskGateway = QStringLiteral("127.0.0.1");

struct NamedType {
    const char* name;
    DataValueManager::Type type;
};
constexpr std::array kTypes = {NamedType{"bool", DataValueManager::Type::Bool},
                               NamedType{"int", DataValueManager::Type::Int},
                               NamedType{"real", DataValueManager::Type::Real}};

template <typename Result>
std::optional<Result> refuse(QString* error, const QString& reason) {
    if (error)
        *error = reason;
    return std::nullopt;
}

bool matches(const char* pattern, const QString& text) {
    return QRegularExpression(QRegularExpression::anchoredPattern(QString::fromLatin1(pattern))).match(text).hasMatch();
}

// Fills type and value from what stands after the equals sign.
bool parseValue(const QString& text, ValueSetting& setting) {
    for (const NamedType& named : kTypes) {
        if (text == QLatin1String(named.name) + QLatin1String(":invalid")) {
            setting.type = named.type;
            return true;
        }
    }
    bool ok = true;
    if (text == QLatin1String("true") || text == QLatin1String("false")) {
        setting.type = DataValueManager::Type::Bool;
        setting.value = text == QLatin1String("true");
    } else if (matches("[+-]?[0-9]+", text)) {
        setting.type = DataValueManager::Type::Int;
        setting.value = text.toInt(&ok);
    } else if (matches("[+-]?([0-9]+\\.[0-9]*|\\.[0-9]+)([eE][+-]?[0-9]+)?", text)) {
        setting.type = DataValueManager::Type::Real;
        setting.value = text.toDouble(&ok);
    } else {
        ok = false;
    }
    return ok;
}

std::optional<Location> parsePosition(const QString& text) {
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 2 || !matches("[-+.0-9]+", parts.at(0).trimmed()) ||
        !matches("[-+.0-9]+", parts.at(1).trimmed()))
        return std::nullopt;
    bool latitudeOk = false;
    bool longitudeOk = false;
    const Location location{parts.at(0).toDouble(&latitudeOk), parts.at(1).toDouble(&longitudeOk)};
    const bool onEarth = std::abs(location.latitude) <= 90.0 && std::abs(location.longitude) <= 180.0;
    if (!latitudeOk || !longitudeOk || !onEarth)
        return std::nullopt;
    return location;
}

bool parseGateway(const QString& text, QHostAddress& address) {
    return matches("[0-9]+\\.[0-9]+\\.[0-9]+\\.[0-9]+", text) && address.setAddress(text);
}

}  // namespace

std::optional<ValueSetting> ValueSetting::parse(const QString& text, QString* error) {
    const int equals = int(text.indexOf(QLatin1Char('=')));
    const QString value = text.mid(equals + 1);
    ValueSetting setting;
    setting.name = text.left(equals);
    if (equals < 1 || !matches("\\S+", setting.name))
        return refuse<ValueSetting>(error, QStringLiteral("\"%1\" is not NAME=VALUE").arg(text));
    if (value == QLatin1String("invalid"))
        return refuse<ValueSetting>(error, QStringLiteral("%1=invalid needs a type: bool:invalid, int:invalid or "
                                                          "real:invalid")
                                               .arg(setting.name));
    if (!parseValue(value, setting))
        return refuse<ValueSetting>(error, QStringLiteral("\"%1\" for %2 is neither true, false, a whole number of 32 "
                                                          "bit, a number with a decimal point nor TYPE:invalid")
                                               .arg(value, setting.name));
    return setting;
}

bool ValueSetting::apply(QString* error) const {
    return value.isValid() ? ValueSetter::set(name, value, error) : ValueSetter::setInvalid(name, type, error);
}

void HostOptions::addTo(QCommandLineParser& parser) {
    parser.addOptions({
        {kConfig, QStringLiteral("Configuration store, an INI file."), QStringLiteral("FILE.ini")},
        {kTrace, QStringLiteral("Vehicle signals to replay, a CSV file: t_s,NAME,…"), QStringLiteral("FILE.csv")},
        {kLog, QStringLiteral("Appends the log to a file instead of standard error."), QStringLiteral("FILE")},
        {kVin, QStringLiteral("The vehicle's identification number."), QStringLiteral("VIN"), kDeskVin},
        {kPosition, QStringLiteral("The vehicle's position in degrees, north and east positive."),
         QStringLiteral("LAT,LON"), QStringLiteral("0,0")},
        {kGateway, QStringLiteral("IPv4 address of the vehicle gateway."), QStringLiteral("ADDRESS"), kDeskGateway},
        {kSet,
         QStringLiteral("Sets a data value at the start: true, false, an integer, a real with a decimal point, or "
                        "bool:invalid, int:invalid, real:invalid. May be given many times."),
         QStringLiteral("NAME=VALUE")},
    });
}

std::optional<HostOptions> HostOptions::read(const QCommandLineParser& parser, QString* error) {
    HostOptions options;
    options.configFile = parser.value(kConfig);
    options.traceFile = parser.value(kTrace);
    options.logFile = parser.value(kLog);
    for (const QString& name : {kConfig, kTrace, kLog}) {
        if (parser.isSet(name) && parser.value(name).isEmpty())
            return refuse<HostOptions>(error, QStringLiteral("--%1: no file is named").arg(name));
    }

    options.vin = parser.value(kVin);
    if (!matches("[A-Za-z0-9]{1,17}", options.vin))
        return refuse<HostOptions>(error,
                                   QStringLiteral("--vin: \"%1\" is not 1 to 17 letters and digits").arg(options.vin));

    const auto position = parsePosition(parser.value(kPosition));
    if (!position)
        return refuse<HostOptions>(error, QStringLiteral("--position: \"%1\" is not LAT,LON in degrees, from -90 to 90 "
                                                         "and from -180 to 180")
                                              .arg(parser.value(kPosition)));
    options.position = *position;

    if (!parseGateway(parser.value(kGateway), options.gateway))
        return refuse<HostOptions>(error,
                                   QStringLiteral("--gateway: \"%1\" is no IPv4 address").arg(parser.value(kGateway)));

    for (const QString& text : parser.values(kSet)) {
        QString reason;
        const auto setting = ValueSetting::parse(text, &reason);
        if (!setting)
            return refuse<HostOptions>(error, QStringLiteral("--set: ") + reason);
        options.settings.push_back(*setting);
    }
    return options;
}
