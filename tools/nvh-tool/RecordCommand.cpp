#include "tools/nvh-tool/RecordCommand.h"

#include "tools/nvh-tool/TestRun.h"

#include <QCoreApplication>
#include <QTimer>

#include <optional>

namespace {

using Fate = RecordOptions::Fate;

std::optional<RecordOptions> readOptions(const QCommandLineParser& parser, const QStringList& arguments,
                                         QString& error) {
    RecordOptions options;
    options.testType = parser.value(QStringLiteral("type"));
    bool secondsOk = true;
    if (parser.isSet(QStringLiteral("seconds")))
        options.seconds = parser.value(QStringLiteral("seconds")).toInt(&secondsOk);
    options.clunk = parser.isSet(QStringLiteral("clunk"));
    const bool save = parser.isSet(QStringLiteral("save"));
    const bool upload = parser.isSet(QStringLiteral("upload"));
    const bool discard = parser.isSet(QStringLiteral("discard"));
    options.fate = save ? Fate::Save : upload ? Fate::Upload : Fate::Discard;

    if (!arguments.isEmpty())
        error = QStringLiteral("record: unexpected \"%1\"").arg(arguments.first());
    else if (!testTypesVsTags.contains(options.testType))
        error = unknownTestType(options.testType);
    else if (!secondsOk || options.seconds < 1 || options.seconds > RecordOptions::kLongestSeconds)
        error = QStringLiteral("--seconds: \"%1\" is not a whole number from 1 to %2")
                    .arg(parser.value(QStringLiteral("seconds")))
                    .arg(RecordOptions::kLongestSeconds);
    else if (save + upload + discard != 1)
        error = QStringLiteral("record: one of --save, --upload and --discard is needed");
    return error.isEmpty() ? std::optional(options) : std::nullopt;
}

}  // namespace

QList<QCommandLineOption> RecordCommand::options() const {
    return {
        {QStringLiteral("type"), QStringLiteral("The test type, for example \"65 MPH\"."), QStringLiteral("TYPE")},
        {QStringLiteral("seconds"),
         QStringLiteral(
             "Records that long, 1 to 700 s. Without it until an interrupt, or until the engine stops itself."),
         QStringLiteral("N")},
        {QStringLiteral("clunk"), QStringLiteral("Files the run as one with torque reversal.")},
        {QStringLiteral("save"), QStringLiteral("Keeps the package.")},
        {QStringLiteral("upload"), QStringLiteral("Uploads the package.")},
        {QStringLiteral("discard"), QStringLiteral("Deletes what was recorded.")},
    };
}

int RecordCommand::run(const QCommandLineParser& parser, const QStringList& arguments, HostServices& services) {
    QString error;
    const auto options = readOptions(parser, arguments, error);
    if (!options)
        return refuse(error);
    TestRun run(*options);
    services.startTrace();
    QTimer::singleShot(0, &run, [&run] { run.begin(); });
    return QCoreApplication::exec();
}
