#include "host/app/Session.h"

#include "host/console/Console.h"
#include "host/drive/DriveRunner.h"
#include "host/screen/PluginLoader.h"

#include <HelixDash/views/DisplayImage.h>

#include <QCoreApplication>

#include <cstdio>

namespace {

constexpr int kHeld = 0;
constexpr int kNotHeld = 1;

}  // namespace

Session::Session() {
    connect(&mStopSignals, &StopSignals::caught, this,
            [](int signal) { QCoreApplication::exit(StopSignals::exitStatus(signal)); });
}

Session::~Session() = default;

bool Session::prepare(const ScreenOptions& options, QString* error) {
    if (!mServices.open(options.host, error))
        return false;
    mWindow = std::make_unique<HostWindow>(options.console ? new Console : nullptr);
    if (!options.drive.isEmpty() && !readDrive(options.drive, error))
        return false;

    mAppInfo.name = PluginLoader::applicationName(options.plugin);
    mAppInfo.directory = options.applicationDirectory;
    mAppInfo.titleArea = &mWindow->screen().titleArea();
    DisplayImage::addSearchPath(options.applicationDirectory);
    QString reason;
    DisplayView* application =
        PluginLoader::load(options.plugin, mAppInfo, mWindow->screen().applicationArea(), &reason);
    if (!application) {
        *error = QStringLiteral("--plugin: ") + reason;
        return false;
    }
    application->show(true);
    mWindow->setWindowTitle(mAppInfo.name);
    connect(mWindow.get(), &HostWindow::closed, this, &Session::windowClosed);
    return true;
}

bool Session::readDrive(const QString& path, QString* error) {
    QString reason;
    std::optional<DriveFile> drive = DriveFile::read(path, &reason);
    if (!drive) {
        *error = QStringLiteral("--drive: ") + reason;
        return false;
    }
    mFinger = std::make_unique<Finger>(*mWindow);
    mDrive = std::make_unique<DriveRunner>(std::move(*drive),
                                           DriveStage{mWindow->screen(), *mFinger, mServices.tracePlayer(), mLogWatch});
    connect(mDrive.get(), &DriveRunner::finished, this, &Session::driveFinished);
    return true;
}

int Session::run() {
    mWindow->show();
    mServices.startTrace();
    if (mDrive)
        mDrive->start();
    return QCoreApplication::exec();
}

void Session::driveFinished(bool held) {
    QCoreApplication::exit(held ? kHeld : kNotHeld);
}

void Session::windowClosed() {
    if (mDrive)
        std::fprintf(stderr, "The screen has been closed before the drive's end\n");
    QCoreApplication::exit(mDrive ? kNotHeld : kHeld);
}
