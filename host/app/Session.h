#pragma once

#include "host/app/ScreenOptions.h"
#include "host/drive/LogWatch.h"
#include "host/screen/Finger.h"
#include "host/screen/HostWindow.h"
#include "host/setup/HostServices.h"
#include "host/setup/StopSignals.h"

#include <HelixDash/services/AppInfo.h>

class DriveRunner;

// One run of the touchscreen, from its set-up to its exit status.
//
//     Session session;
//     if (!session.prepare(options, &error)) …   // status 2
//     return session.run();
class Session : public QObject {
    Q_OBJECT
public:
    Session();
    ~Session() override;

    // Reads everything, loads the application and plays nothing yet. False with a reason in one line.
    bool prepare(const ScreenOptions& options, QString* error);

    // Shows the screen and plays; returns the process's status.
    int run();

private:
    bool readDrive(const QString& path, QString* error);
    void driveFinished(bool held);
    void windowClosed();

    // Destroyed from the last to the first: the drive before what it acts on, the application before its services.
    HostServices mServices;
    StopSignals mStopSignals;
    LogWatch mLogWatch;
    AppInfo mAppInfo;
    std::unique_ptr<HostWindow> mWindow;
    std::unique_ptr<Finger> mFinger;
    std::unique_ptr<DriveRunner> mDrive;
};
