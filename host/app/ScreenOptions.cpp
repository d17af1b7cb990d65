#include "host/app/ScreenOptions.h"

#include <QCommandLineParser>
#include <QFileInfo>

namespace {

const QString kPlugin = QStringLiteral("plugin");
const QString kAppDir = QStringLiteral("app-dir");
const QString kDrive = QStringLiteral("drive");
const QString kConsole = QStringLiteral("console");

void describe(QCommandLineParser& parser) {
    parser.setApplicationDescription(QStringLiteral(
        "Shows one application on a touchscreen of 1300 x 1000.\n\n"
        "Ends with 0, with 1 if a step of the drive did not hold, with 2 if arguments, drive, trace or application "
        "cannot be used. Without a display the screen is drawn offscreen; QT_QPA_PLATFORM=vnc shows it to a VNC "
        "viewer, "
        "QT_SCALE_FACTOR=0.7 makes it smaller."));
    parser.addOption({{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Displays this help.")});
    parser.addVersionOption();
    parser.addOptions({
        {kPlugin, QStringLiteral("The application, a shared library."), QStringLiteral("FILE.so")},
        {kAppDir, QStringLiteral("Directory of the application's data files."), QStringLiteral("DIR")},
        {kDrive, QStringLiteral("Plays a script of one session, then ends."), QStringLiteral("FILE")},
        {kConsole, QStringLiteral("A panel beside the screen to play the car with.")},
    });
    HostOptions::addTo(parser);
}

QString firstFault(const QCommandLineParser& parser) {
    if (!parser.positionalArguments().isEmpty())
        return QStringLiteral("%1: no such argument").arg(parser.positionalArguments().first());
    for (const QString& name : {kPlugin, kAppDir, QStringLiteral("config")}) {
        if (parser.value(name).isEmpty())
            return QStringLiteral("--%1 is missing").arg(name);
    }
    if (!QFileInfo(parser.value(kAppDir)).isDir())
        return QStringLiteral("--app-dir: %1 is no directory").arg(parser.value(kAppDir));
    if (parser.isSet(kDrive) && parser.value(kDrive).isEmpty())
        return QStringLiteral("--drive: no file is named");
    return {};
}

}  // namespace

std::optional<ScreenOptions> ScreenOptions::read(const QStringList& arguments, QString* error) {
    QCommandLineParser parser;
    describe(parser);
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return std::nullopt;
    }
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp();
    if (parser.isSet(QStringLiteral("version")))
        parser.showVersion();
    *error = firstFault(parser);
    if (!error->isEmpty())
        return std::nullopt;
    const auto host = HostOptions::read(parser, error);
    if (!host)
        return std::nullopt;
    return ScreenOptions{*host, parser.value(kPlugin), QFileInfo(parser.value(kAppDir)).canonicalFilePath(),
                         parser.value(kDrive), parser.isSet(kConsole)};
}
