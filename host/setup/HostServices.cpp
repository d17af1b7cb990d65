#include "host/setup/HostServices.h"

#include "host/setup/LogWriter.h"
#include "host/trace/TraceFile.h"

#include <HelixDash/services/ConfigStore.h>
#include <HelixDash/services/Logger.h>
#include <HelixDash/services/RuntimeEnv.h>
#include <HelixDash/services/SysUtils.h>

#include <QDir>
#include <QFileInfo>

#include <utility>

namespace {

using Type = DataValueManager::Type;

bool refuse(QString* error, const char* option, const QString& reason) {
    if (error)
        *error = QStringLiteral("%1: %2").arg(QLatin1String(option), reason);
    return false;
}

// A configuration file need not exist yet, but somebody must be able to make it.
bool openConfiguration(const QString& path, QString* error) {
    QString reason;
    if (path.isEmpty())
        return true;
    const QFileInfo file(path);
    if (!file.absoluteDir().exists())
        return refuse(error, "--config", QStringLiteral("%1: there is no such directory").arg(file.absolutePath()));
    if (file.isDir())
        return refuse(error, "--config", QStringLiteral("%1 is a directory").arg(path));
    return ConfigStore::instance().open(path, &reason) || refuse(error, "--config", reason);
}

}  // namespace

void HostServices::addNamedValues() {
    static const std::pair<const char*, Type> kNamedValues[] = {
        {"VAPI_signedVehicleSpeed", Type::Real},       // mph, negative in reverse
        {"VAPI_torqueCmd", Type::Real},                // Nm
        {"VAPI_motorRPM", Type::Real},                 // 1/min
        {"VAPI_brakePedal", Type::Bool},               // pressed
        {"VAPI_trim", Type::Int},                      // TrimNameMap
        {"HVAC_outsideTemp", Type::Real},              // °C
        {"HVAC_insideTemp", Type::Real},               // °C
        {"TPMS_pressureFL", Type::Real},               // bar
        {"TPMS_pressureFR", Type::Real},               // bar
        {"TPMS_pressureRL", Type::Real},               // bar
        {"TPMS_pressureRR", Type::Real},               // bar
        {"STW_leftTop", Type::Bool},                   // pressed
        {"STW_leftMiddle", Type::Bool},                // pressed
        {"STW_leftBottom", Type::Bool},                // pressed
        {"STW_leftScroll", Type::Int},                 // counts up and down with the wheel
        {"GUI_steeringWheelControlsMode", Type::Int},  // who owns the steering-wheel controls
        {"GUI_disableAntiClunkRequest", Type::Bool},
    };
    for (const auto& [name, type] : kNamedValues)
        DataValueManager::instance().add(QString::fromLatin1(name), type);
}

bool HostServices::open(const HostOptions& options, QString* error) {
    QString reason;
    if (!LogWriter::install(options.logFile, &reason))
        return refuse(error, "--log", reason);
    addNamedValues();
    if (!openConfiguration(options.configFile, error))
        return false;

    if (!options.traceFile.isEmpty()) {
        std::optional<TraceFile> trace = TraceFile::read(options.traceFile, &reason);
        if (!trace)
            return refuse(error, "--trace", reason);
        mTrace = std::make_shared<const TraceFile>(std::move(*trace));
    }

    SysUtils::setVin(options.vin);
    LocationManager::instance()->setCurrentLocation(options.position);
    RuntimeEnv::instance()->setGatewayAddress(options.gateway);
    for (const ValueSetting& setting : options.settings) {
        if (!setting.apply(&reason))
            return refuse(error, "--set", reason);
    }
    if (mTrace && !TracePlayer::fits(*mTrace, &reason))
        return refuse(error, "--trace", reason);
    return true;
}

void HostServices::startTrace() {
    QString reason;
    // The application may have made a value of another type since open().
    if (mTrace && !mTracePlayer.start(mTrace, 0.0, &reason))
        Logger(nullptr, "ERROR") << "Trace not started:" << reason;
}
