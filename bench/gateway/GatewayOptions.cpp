#include "bench/gateway/GatewayOptions.h"

#include <QCommandLineParser>

#include <limits>

namespace {

QString description() {
    return QStringLiteral(R"(The vehicle gateway's UDP side on a desk: acknowledges requests and forwards CAN frames.

A start request (UDP port 20100) is acknowledged to port 20101 of its sender, and the frames of its bus and id go to
port 20098 there, until a stop request. The frames come from a log or a trace, which begins anew for each client: with
the first start from an address, or from another port of it. Frame times are those of the recording, whatever the pace:
its first frame is at the time of --header-start.

  --log FILE        what `candump -L` has written: (1436509052.249713) can0 244#0000000000000100
                    Extended ids, error messages, remote frames and CAN FD are left out and counted.
  --trace FILE.csv  VAPI_motorRPM of a trace as a cyclic message, low byte in data byte 4, high byte in 5

It ends with SIGTERM or SIGINT and says what came in and went out.

Faults F strike with a probability P from 0 to 1, the same ones again with the same --seed:
)") + describeFaults();
}

void addOptions(QCommandLineParser& parser) {
    const auto add = [&parser](const char* name, const char* text, const char* value, const char* preset = "") {
        parser.addOption({QString::fromLatin1(name), QString::fromLatin1(text), QString::fromLatin1(value),
                          QString::fromLatin1(preset)});
    };
    parser.addHelpOption();
    add("log", "The frames to forward.", "FILE");
    add("trace", "The drive whose motor speed to forward.", "FILE.csv");
    add("bus",
        "NAME=N with --log: bus number of an interface, if not the one at the end of its name; may be repeated. "
        "N with --trace: bus of the message.",
        "BUS");
    add("id", "With --trace: id of the message. Without --bus and --id it goes out under the ones asked for.", "ID");
    add("period", "With --trace: milliseconds from one frame to the next.", "MS", "10");
    add("speed", "Faster or slower than recorded, by this factor.", "FACTOR", "1");
    add("rate", "Forwarded frames a second instead of the recorded pace; 0: as fast as a receiver can be trusted with.",
        "N");
    add("loop", "Start over at the end.", "");
    add("all", "Forward every frame to whoever has asked for one.", "");
    add("frames-per-datagram", "The most frames in a datagram, 1 to 106.", "N", "100");
    add("collect", "The longest that a frame waits for others in its datagram, in milliseconds.", "MS", "50");
    add("header-start", "Header time at the recording's first frame, in milliseconds.", "MS", "1000");
    add("fault", "Go wrong in this way; may be repeated.", "F=P");
    add("delay", "How late what is delayed comes, in milliseconds.", "MS", "200");
    add("seed", "Seed of the faults.", "N", "1");
    add("address", "IPv4 address to listen on.", "ADDRESS", "127.0.0.1");
    add("port", "Port for requests; 0 takes a free one.", "N", "20100");
    add("ack-port", "Port of a requester for acknowledgements.", "N", "20101");
    add("data-port", "Port of a requester for frames.", "N", "20098");
}

// Reads one option after the other; after the first complaint the rest is not looked at.
class OptionReader {
public:
    explicit OptionReader(const QCommandLineParser& parser) : mParser(parser) {}

    void read();

    GatewayOptions mOptions;
    QString mComplaint;

private:
    bool isSet(const char* name) const { return mParser.isSet(QLatin1String(name)); }
    QString value(const char* name) const { return mParser.value(QLatin1String(name)); }
    void complain(const QString& text) {
        if (mComplaint.isEmpty())
            mComplaint = text;
    }
    void complain(const char* name, const QString& text, const QString& reason) {
        complain(QStringLiteral("--%1 %2: %3").arg(QLatin1String(name), text, reason));
    }

    // The option's whole number in any base that its prefix says; 0 and a complaint if it is none, or out of range.
    qint64 number(const char* name, const QString& text, qint64 least, qint64 most);
    qint64 number(const char* name, qint64 least, qint64 most) { return number(name, value(name), least, most); }
    double real(const char* name, const QString& text, double least, double most);

    void readSource();
    void readBuses();
    void readTraceAddress();
    void readPace();
    void readPorts();
    void readFaults();

    const QCommandLineParser& mParser;
};

qint64 OptionReader::number(const char* name, const QString& text, qint64 least, qint64 most) {
    bool ok = false;
    const bool hexadecimal = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive);
    const qint64 number = hexadecimal ? text.mid(2).toLongLong(&ok, 16) : text.toLongLong(&ok, 10);
    if (ok && number >= least && number <= most)
        return number;
    complain(name, text, QStringLiteral("no whole number from %1 to %2").arg(least).arg(most));
    return 0;
}

double OptionReader::real(const char* name, const QString& text, double least, double most) {
    bool ok = false;
    const double number = text.toDouble(&ok);
    if (ok && number >= least && number <= most)
        return number;
    complain(name, text, QStringLiteral("no number from %1 to %2").arg(least).arg(most));
    return 0.0;
}

void OptionReader::read() {
    if (!mParser.positionalArguments().isEmpty())
        complain(QStringLiteral("unexpected argument %1").arg(mParser.positionalArguments().constFirst()));
    readSource();
    readPace();
    readPorts();
    readFaults();
}

void OptionReader::readSource() {
    mOptions.logPath = value("log");
    mOptions.tracePath = value("trace");
    if (mOptions.logPath.isEmpty() == mOptions.tracePath.isEmpty()) {
        complain(QStringLiteral("either --log FILE or --trace FILE.csv is needed"));
    } else if (!mOptions.logPath.isEmpty()) {
        for (const char* const name : {"id", "period"}) {
            if (isSet(name))
                complain(QStringLiteral("--%1 goes with --trace only").arg(QLatin1String(name)));
        }
        readBuses();
    } else {
        readTraceAddress();
        mOptions.periodMs = int(number("period", 1, 60'000));
    }
}

void OptionReader::readBuses() {
    for (const QString& setting : mParser.values(QStringLiteral("bus"))) {
        const int equals = int(setting.lastIndexOf(QLatin1Char('=')));
        if (equals < 1) {
            complain("bus", setting, QStringLiteral("with --log, wanted is NAME=N"));
            return;
        }
        const auto bus = std::uint8_t(number("bus", setting.mid(equals + 1), 0, 255));
        mOptions.buses[setting.left(equals).toStdString()] = bus;
    }
}

void OptionReader::readTraceAddress() {
    if (isSet("bus") != isSet("id"))
        complain(QStringLiteral("--bus and --id go together with --trace"));
    else if (isSet("bus"))
        mOptions.address = CanAddress{std::uint8_t(number("bus", 0, 255)), std::uint16_t(number("id", 0, 65'535))};
}

void OptionReader::readPace() {
    ReplaySettings& replay = mOptions.gateway.replay;
    if (isSet("speed") && isSet("rate"))
        complain(QStringLiteral("--speed and --rate exclude each other"));
    replay.speed = real("speed", value("speed"), 0.01, 1000.0);
    if (isSet("rate"))
        replay.framesPerSecond = real("rate", value("rate"), 0.0, 1e8);
    replay.framesPerDatagram = int(number("frames-per-datagram", 1, kMostFramesPerDatagram));
    replay.collectMs = int(number("collect", 0, 60'000));
    replay.loop = isSet("loop");
    mOptions.gateway.forwardEverything = isSet("all");
    mOptions.gateway.headerStartMs =
        std::uint32_t(number("header-start", 0, std::numeric_limits<std::uint32_t>::max()));
}

void OptionReader::readPorts() {
    GatewaySettings& gateway = mOptions.gateway;
    gateway.requestPort = std::uint16_t(number("port", 0, 65'535));
    gateway.ackPort = std::uint16_t(number("ack-port", 1, 65'535));
    gateway.dataPort = std::uint16_t(number("data-port", 1, 65'535));
    gateway.address = QHostAddress(value("address"));
    if (gateway.address.protocol() != QAbstractSocket::IPv4Protocol)
        complain("address", value("address"), QStringLiteral("no IPv4 address"));
}

void OptionReader::readFaults() {
    for (const QString& setting : mParser.values(QStringLiteral("fault"))) {
        const auto fault = faultFromName(setting.section(QLatin1Char('='), 0, 0));
        if (!fault) {
            complain("fault", setting, QStringLiteral("no such fault; --help lists them"));
            return;
        }
        mOptions.faults[std::size_t(*fault)] = real("fault", setting.section(QLatin1Char('='), 1), 0.0, 1.0);
    }
    mOptions.delayMs = int(number("delay", 1, 60'000));
    mOptions.seed = std::uint64_t(number("seed", 0, std::numeric_limits<qint64>::max()));
}

}  // namespace

std::optional<GatewayOptions> GatewayOptions::read(const QStringList& arguments, QString* error) {
    QCommandLineParser parser;
    parser.setApplicationDescription(description());
    addOptions(parser);
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return std::nullopt;
    }
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp();
    OptionReader reader(parser);
    reader.read();
    if (!reader.mComplaint.isEmpty()) {
        *error = reader.mComplaint;
        return std::nullopt;
    }
    return reader.mOptions;
}
