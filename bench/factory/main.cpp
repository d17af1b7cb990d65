// factory-server: the factory's data server on a desk.

#include "bench/factory/FactoryServer.h"
#include "bench/factory/Fault.h"
#include "bench/factory/PackageStore.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <csignal>
#include <cstdio>
#include <thread>

namespace {

constexpr int kUnusable = 2;

int unusable(const QString& reason) {
    std::fprintf(stderr, "factory-server: %s\n", qPrintable(reason));
    return kUnusable;
}

QString description() {
    return QStringLiteral(R"(The factory's data server on a desk, on 127.0.0.1.

  POST /vdt/upload         stores the archive of the multipart field "data", answers 200 and its URL
  POST /vdt/sonvara_files  {"url": URL}: answers 201 and {"VDT Feedback": what is known of the archive},
                           404 for an archive that is not here
  GET  /vdt/static         the static test list
  GET  /                   a page of what has come in, each archive to be downloaded
  POST /bench/fault        {"endpoint": E, "fault": F, "times": N}: as --fault, for the next N requests
                           (without "times": until told otherwise)

An archive is stored whole or not at all, and never replaces another. It ends with SIGTERM or SIGINT.

Endpoints E: upload, sonvara_files, static. Faults F:
)") + Fault::describeKinds();
}

// Rows "0", "1", … without a gap, each with a name: what is shown as a list must be one.
QString complaintAboutList(const QByteArray& json) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError) {
        const auto line = json.left(error.offset).count('\n') + 1;
        return QStringLiteral("line %1: %2").arg(line).arg(error.errorString());
    }
    const QJsonObject list = document.object();
    if (list.isEmpty())
        return QStringLiteral("no object with rows \"0\", \"1\", …");
    for (int row = 0; row < list.size(); ++row) {
        const QJsonValue name = list.value(QString::number(row)).toObject().value(QStringLiteral("Name"));
        if (!name.isString())
            return QStringLiteral("no row \"%1\" with a \"Name\"").arg(row);
    }
    return {};
}

bool setFaults(const QStringList& settings, FaultBoard& board, QString* error) {
    for (const QString& setting : settings) {
        const auto endpoint = endpointFromName(setting.section(QLatin1Char('='), 0, 0));
        const auto fault = Fault::parse(setting.section(QLatin1Char('='), 1));
        if (!endpoint || !fault || !board.set(*endpoint, *fault, 0)) {
            *error = QStringLiteral("--fault %1: no such endpoint or fault; --help lists them").arg(setting);
            return false;
        }
    }
    return true;
}

// Serves until SIGTERM or SIGINT, which the caller has blocked.
void serve(FactoryServer& server, const sigset_t& endSignals) {
    std::thread serving([&server] { server.run(); });
    int received = 0;
    sigwait(&endSignals, &received);
    server.stop();
    serving.join();
}

}  // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("factory-server"));

    QCommandLineParser parser;
    parser.setApplicationDescription(description());
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("port"), QStringLiteral("Port to listen on; 0 takes a free one."), QStringLiteral("N"),
         QStringLiteral("4567")},
        {QStringLiteral("store"), QStringLiteral("Directory that keeps the archives; made if missing."),
         QStringLiteral("DIR")},
        {QStringLiteral("list"), QStringLiteral("The static test list: {\"0\": {\"Name\": …}, \"1\": …}."),
         QStringLiteral("FILE"), QStringLiteral(":/factory/vdt-static.json")},
        {QStringLiteral("limit-mb"), QStringLiteral("The most megabytes an upload may bring."), QStringLiteral("N"),
         QStringLiteral("2000")},
        {QStringLiteral("fault"), QStringLiteral("What to do wrong, and where; may be given once for each endpoint."),
         QStringLiteral("E=F")},
    });
    if (!parser.parse(QCoreApplication::arguments()))
        return unusable(parser.errorText());
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp();

    bool portOk = false;
    const int port = parser.value(QStringLiteral("port")).toInt(&portOk);
    if (!portOk || port < 0 || port > 65535)
        return unusable(QStringLiteral("--port %1: no port").arg(parser.value(QStringLiteral("port"))));
    bool limitOk = false;
    const int megabytes = parser.value(QStringLiteral("limit-mb")).toInt(&limitOk);
    if (!limitOk || megabytes < 1)
        return unusable(QStringLiteral("--limit-mb %1: no number").arg(parser.value(QStringLiteral("limit-mb"))));
    if (!parser.positionalArguments().isEmpty())
        return unusable(QStringLiteral("unexpected argument %1").arg(parser.positionalArguments().first()));
    if (!parser.isSet(QStringLiteral("store")))
        return unusable(QStringLiteral("--store DIR is missing: the directory that keeps the archives"));

    QFile list(parser.value(QStringLiteral("list")));
    if (!list.open(QIODevice::ReadOnly))
        return unusable(QStringLiteral("--list %1: %2").arg(list.fileName(), list.errorString()));
    const QByteArray staticList = list.readAll();
    const QString complaint = complaintAboutList(staticList);
    if (!complaint.isEmpty())
        return unusable(QStringLiteral("--list %1: %2").arg(list.fileName(), complaint));

    QString error;
    FaultBoard faults;
    if (!setFaults(parser.values(QStringLiteral("fault")), faults, &error))
        return unusable(error);

    // Blocked before the first thread starts, so that they reach nobody but sigwait(). A file that may not grow any
    // further is an error to report, not a reason to die.
    sigset_t endSignals;
    sigemptyset(&endSignals);
    sigaddset(&endSignals, SIGTERM);
    sigaddset(&endSignals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &endSignals, nullptr);
    std::signal(SIGXFSZ, SIG_IGN);

    const std::unique_ptr<PackageStore> store = PackageStore::open(parser.value(QStringLiteral("store")), &error);
    if (!store)
        return unusable(QStringLiteral("--store: %1").arg(error));
    FactoryServer server(*store, faults, staticList, qint64(megabytes) * 1'000'000);
    if (!server.bind(port, &error))
        return unusable(error);

    std::printf("factory-server listens on http://127.0.0.1:%d/\n", server.port());
    std::fflush(stdout);
    serve(server, endSignals);
    return 0;
}
