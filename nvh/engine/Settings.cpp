#include "nvh/engine/Settings.h"

namespace {

QString factoryUrl(const char* path) {
    return QStringLiteral("http://%1:4567%2").arg(QStringLiteral(NVH_FACTORY_HOST), QLatin1String(path));
}

}  // namespace

const ConfigStringValue cRmsThres("nvh/micCheck_RmsThres", "0.001");
const ConfigStringValue cDbDiffThres("nvh/DbDiffThres", "1.5");
const ConfigStringValue cCapturingFileName("audio/capturing_file_name", "/home/vandrel/test.wav");
const ConfigIntValue cNVHTimeoutMs("nvh/timeout_ms", 120000);
const ConfigStringValue cConfigFileNameSource("nvh/config_file_name", "/var/etc/gateway.cfg");
const ConfigStringValue cSavedPackagePath("nvh/package_dir", "/tmp/");
const ConfigStringValue cAmbientFileName("nvh/ambientRecordingFilename", "/tmp/ambient.wav");
const ConfigStringValue cNotesFileName("nvh/notesRecordingFilename", "/tmp/notes.wav");
const ConfigStringValue cRecordingFilename("nvh/recordingFilename", "/tmp/recording.wav");
const ConfigStringValue cResultsFileName("nvh/results_file_name", "/tmp/nvh-results.txt");
const ConfigStringValue cConfigFileNameDest("nvh/config_file_name", "/tmp/nvh-config.txt");
const ConfigStringValue cDataValuesFileName("nvh/datavalues_file_name", "/tmp/nvh-datavalues.txt");
const ConfigStringValue cWheelSpeedFileName("nvh/wheelspeeds_file_name", "/tmp/nvh-wheelspeeds.txt");
const ConfigStringValue cVehicleSpeedFileName("nvh/vehiclespeed_file_name", "/tmp/nvh-vehiclespeed.txt");
const ConfigStringValue cMotorTorqueFileName("nvh/motortorque_file_name", "/tmp/nvh-motortorque.txt");
const ConfigStringValue cRpmFileName("nvh/rpm_file_name", "/tmp/nvh-rpm.txt");
const ConfigStringValue cVdtStaticFilename("nvh/vdt_static_filename", "/tmp/nvh-vdtStatic.txt");
const ConfigStringValue cMicCheckFilename("nvh/micCheck_filename", "/tmp/nvh-micCheck.txt");

const QList<ConfigStringValue> allFilenames = {
    cRecordingFilename,   cAmbientFileName,    cNotesFileName,      cRpmFileName,
    cResultsFileName,     cConfigFileNameDest, cDataValuesFileName, cVehicleSpeedFileName,
    cMotorTorqueFileName, cWheelSpeedFileName, cVdtStaticFilename,  cMicCheckFilename,
};

const ConfigStringValue cPackageUploadUrl("nvh/mes_url", factoryUrl("/vdt/upload"));
const ConfigStringValue cMetadataUploadUrl("nvh/sonvara_api", factoryUrl("/vdt/sonvara_files"));
const ConfigStringValue cVdtStaticURL("nvh/vdtStaticURL", factoryUrl("/vdt/static"));
const ConfigBoolValue cLogVerbose("nvh/LogVerbose", false);

const char* const NVHAppVersion = "v3.0";

QMap<QString, QString> testTypesVsTags = {
    {"35 MPH", "35MPH"},     {"42-43 Steady", "42_43_STEADY"}, {"65 MPH", "65MPH"}, {"75 MPH", "75MPH"},
    {"App Test", "APPTEST"}, {"Brake Squeal", "BSQUEAL"},      {"BSR", "BSR"},      {"Clunk", "CLUNK"},
    {"Drive", "DRIVE"},      {"Invalid", "INVALID"},           {"Mic Test", "MIC"}, {"Ramp", "RAMP"},
    {"Regen", "Regen"},      {"Service", "SERVICE"},           {"WOT", "WOT"},
};

QString appModeToStr(AppMode mode) {
    switch (mode) {
        case AppModeVdt:
            return QStringLiteral("VDT");
        case AppModeService:
            return QStringLiteral("SERVICE");
        case AppModeNvh:
            break;
    }
    return QStringLiteral("NVH");
}
