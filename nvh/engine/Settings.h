#pragma once

#include "nvh/Export.h"

#include <HelixDash/services/ConfigValue.h>

#include <QList>
#include <QMap>
#include <QString>

// The recorder's settings. All exist from the load of the library to its unload; each is read from the configuration
// at every use, so a change takes effect at the next one. Any thread.

// Thresholds of the microphone check, passed on as they stand: RMS (full scale 1.0) and level difference in dB.
NVH_EXPORT extern const ConfigStringValue cRmsThres;
NVH_EXPORT extern const ConfigStringValue cDbDiffThres;

// The file that the audio recorder writes while it records.
NVH_EXPORT extern const ConfigStringValue cCapturingFileName;

// Milliseconds after which the analysis program is killed.
NVH_EXPORT extern const ConfigIntValue cNVHTimeoutMs;

// The vehicle gateway's configuration, and its copy that travels in the package. Both have one key on purpose:
// whoever sets it moves both.
NVH_EXPORT extern const ConfigStringValue cConfigFileNameSource;
NVH_EXPORT extern const ConfigStringValue cConfigFileNameDest;

// The directory in which saved packages are looked for.
NVH_EXPORT extern const ConfigStringValue cSavedPackagePath;

// The files of one test run.
NVH_EXPORT extern const ConfigStringValue cAmbientFileName;
NVH_EXPORT extern const ConfigStringValue cNotesFileName;
NVH_EXPORT extern const ConfigStringValue cRecordingFilename;
NVH_EXPORT extern const ConfigStringValue cResultsFileName;
NVH_EXPORT extern const ConfigStringValue cDataValuesFileName;
NVH_EXPORT extern const ConfigStringValue cWheelSpeedFileName;
NVH_EXPORT extern const ConfigStringValue cVehicleSpeedFileName;
NVH_EXPORT extern const ConfigStringValue cMotorTorqueFileName;
NVH_EXPORT extern const ConfigStringValue cRpmFileName;
NVH_EXPORT extern const ConfigStringValue cVdtStaticFilename;
NVH_EXPORT extern const ConfigStringValue cMicCheckFilename;

// The output files of one test run in the order in which they are deleted and packed.
NVH_EXPORT extern const QList<ConfigStringValue> allFilenames;

// Endpoints of the factory data server.
NVH_EXPORT extern const ConfigStringValue cPackageUploadUrl;
NVH_EXPORT extern const ConfigStringValue cMetadataUploadUrl;
NVH_EXPORT extern const ConfigStringValue cVdtStaticURL;

// Additional progress lines in the log.
extern const ConfigBoolValue cLogVerbose;

// The version as it stands in the title and in package names.
NVH_EXPORT extern const char* const NVHAppVersion;

// Display name of a test type to its file tag. A test type that is asked for and not known is added with an empty
// tag. UI thread.
NVH_EXPORT extern QMap<QString, QString> testTypesVsTags;

// What the application is used for. Any other number counts as the full recorder.
enum AppMode : int {
    AppModeNvh = 0,      // the full recorder
    AppModeVdt = 1,      // the recorder with the list of static vehicle tests
    AppModeService = 2,  // the reduced recorder for service technicians
};

// "NVH", "VDT" or "SERVICE".
NVH_EXPORT QString appModeToStr(AppMode mode);
