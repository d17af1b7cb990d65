// cabin-sound: what the microphones of a car hear, on a desk.

#include "bench/sound/CabinSound.h"
#include "bench/sound/SoundOutput.h"
#include "bench/sound/WavLoop.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <limits>

namespace {

constexpr int kUnusable = 2;
constexpr int kBlockFrames = 480;  // 10 ms

std::atomic<bool> gEnd = false;
std::atomic<bool> gRewind = false;

int unusable(const QString& reason) {
    std::fprintf(stderr, "cabin-sound: %s\n", qPrintable(reason));
    return kUnusable;
}

QString description() {
    QString text = QStringLiteral(R"(Plays the eight microphones of a cabin at 48 kHz, 16 bit, until SIGTERM or SIGINT.

With --trace it makes the sound of a drive: motor orders that follow VAPI_motorRPM and VAPI_torqueCmd, road and wind
noise that follow VAPI_signedVehicleSpeed, a level and a delay for each seat. The same trace and seed give the same
samples. With --wav it plays a recording as it is. Both start over at their end, and at once on SIGUSR1, so that a
drive which starts elsewhere can be heard in step.

Channels:
)");
    for (size_t channel = 0; channel < kSeats.size(); ++channel) {
        text += QStringLiteral("  %1  %2 %3 dB, %4 ms\n")
                    .arg(channel + 1)
                    .arg(QLatin1String(kSeats[channel].place), -30)
                    .arg(kSeats[channel].levelDb, 4, 'f', 1)
                    .arg(kSeats[channel].delayMs, 0, 'f', 1);
    }
    return text;
}

void addOptions(QCommandLineParser& parser) {
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("trace"), QStringLiteral("The drive to be heard: t_s,NAME,NAME..."),
         QStringLiteral("FILE.csv")},
        {QStringLiteral("wav"), QStringLiteral("A recording to play instead: 8 channels, 48 kHz."),
         QStringLiteral("FILE.wav")},
        {QStringLiteral("seed"), QStringLiteral("Seed of the noises."), QStringLiteral("N"), QStringLiteral("1")},
        {QStringLiteral("sink"), QStringLiteral("PulseAudio sink to play into (server: PULSE_SERVER)."),
         QStringLiteral("NAME"), QStringLiteral("cabin")},
        {QStringLiteral("out"), QStringLiteral("Write a WAV file instead, or bare samples to standard output (-)."),
         QStringLiteral("FILE.wav")},
        {QStringLiteral("seconds"), QStringLiteral("End after so many seconds; needed with a WAV file."),
         QStringLiteral("N")},
    });
}

// Frames until the end; no end without --seconds. Negative when the option is unusable.
qint64 framesWanted(const QCommandLineParser& parser) {
    if (!parser.isSet(QStringLiteral("seconds")))
        return std::numeric_limits<qint64>::max();
    bool ok = false;
    const double seconds = parser.value(QStringLiteral("seconds")).toDouble(&ok);
    constexpr double kDay = 86'400.0;
    return ok && seconds >= 0.0 && seconds <= kDay ? qint64(seconds * kCabinRate) : -1;
}

QString complaintAboutArguments(const QCommandLineParser& parser) {
    if (!parser.positionalArguments().isEmpty())
        return QStringLiteral("unexpected argument %1").arg(parser.positionalArguments().constFirst());
    if (parser.isSet(QStringLiteral("trace")) == parser.isSet(QStringLiteral("wav")))
        return QStringLiteral("either --trace FILE.csv or --wav FILE.wav is needed");
    bool seedOk = false;
    parser.value(QStringLiteral("seed")).toULongLong(&seedOk);
    if (!seedOk)
        return QStringLiteral("--seed %1: no whole number").arg(parser.value(QStringLiteral("seed")));
    if (framesWanted(parser) < 0)
        return QStringLiteral("--seconds %1: no time in seconds").arg(parser.value(QStringLiteral("seconds")));
    const QString out = parser.value(QStringLiteral("out"));
    if (!out.isEmpty() && out != QLatin1String("-") && !parser.isSet(QStringLiteral("seconds")))
        return QStringLiteral("--out %1 needs --seconds").arg(out);
    return {};
}

std::unique_ptr<SoundSource> openSource(const QCommandLineParser& parser, QString* error) {
    if (parser.isSet(QStringLiteral("wav")))
        return WavLoop::open(parser.value(QStringLiteral("wav")), error);
    std::optional<DriveMotion> motion = DriveMotion::read(parser.value(QStringLiteral("trace")), error);
    if (!motion)
        return nullptr;
    return std::make_unique<CabinSound>(std::move(*motion), parser.value(QStringLiteral("seed")).toULongLong());
}

std::unique_ptr<SoundOutput> openOutput(const QCommandLineParser& parser, QString* error) {
    const QString out = parser.value(QStringLiteral("out"));
    if (out.isEmpty())
        return SoundOutput::toSink(parser.value(QStringLiteral("sink")), error);
    return out == QLatin1String("-") ? SoundOutput::toStandardOutput() : SoundOutput::toWav(out, error);
}

bool play(SoundSource& source, SoundOutput& output, qint64 frames, QString* error) {
    std::array<qint16, size_t(kBlockFrames) * kCabinChannels> block{};
    while (frames > 0 && !gEnd) {
        // What is written now is heard a little later; by then the drive elsewhere has come so far.
        if (gRewind.exchange(false))
            source.playFrom(output.latency());
        const qint64 now = std::min<qint64>(frames, kBlockFrames);
        const std::span samples = std::span(block).first(size_t(now) * kCabinChannels);
        if (!source.render(samples)) {
            *error = QStringLiteral("the recording cannot be read any more");
            return false;
        }
        if (!output.write(samples, error))
            return false;
        frames -= now;
    }
    return output.finish(error);
}

}  // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("cabin-sound"));
    QCommandLineParser parser;
    parser.setApplicationDescription(description());
    addOptions(parser);
    if (!parser.parse(QCoreApplication::arguments()))
        return unusable(parser.errorText());
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp();
    const QString complaint = complaintAboutArguments(parser);
    if (!complaint.isEmpty())
        return unusable(complaint);

    QString error;
    const std::unique_ptr<SoundSource> source = openSource(parser, &error);
    if (!source)
        return unusable(error);

    std::signal(SIGTERM, [](int) { gEnd = true; });
    std::signal(SIGINT, [](int) { gEnd = true; });
    std::signal(SIGUSR1, [](int) { gRewind = true; });
    std::signal(SIGPIPE, SIG_IGN);

    const std::unique_ptr<SoundOutput> output = openOutput(parser, &error);
    if (!output || !play(*source, *output, framesWanted(parser), &error)) {
        std::fprintf(stderr, "cabin-sound: %s\n", qPrintable(error));
        return 1;
    }
    return 0;
}
