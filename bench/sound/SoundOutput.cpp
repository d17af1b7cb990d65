#include "bench/sound/SoundOutput.h"

#include "bench/sound/Cabin.h"

#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sndfile.h>

namespace {

// With any other map ALSA's pulse device records silence on the channels it has no name for.
const QString kChannelMap =
    QStringLiteral("front-left,front-right,rear-left,rear-right,front-center,lfe,side-left,side-right");

// What the sound server holds ready: longer than a busy machine keeps us from playing on.
constexpr int kBufferMs = 250;

class SinkOutput : public SoundOutput {
public:
    explicit SinkOutput(const QString& sink) {
        mPlayer.setProgram(QStringLiteral("pacat"));
        mPlayer.setArguments(
            {QStringLiteral("--playback"), QStringLiteral("--raw"), QStringLiteral("--format=s16le"),
             QStringLiteral("--rate=%1").arg(kCabinRate), QStringLiteral("--channels=%1").arg(kCabinChannels),
             QStringLiteral("--channel-map=") + kChannelMap, QStringLiteral("--latency-msec=%1").arg(kBufferMs),
             QStringLiteral("--client-name=cabin-sound"), QStringLiteral("--device=") + sink});
        mPlayer.setStandardOutputFile(QProcess::nullDevice());
        // A bench gives its recorders a short latency by this variable; it would overrule the player's long one.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("PULSE_LATENCY_MSEC"));
        mPlayer.setProcessEnvironment(environment);
    }

    // pacat ends when its input does; one that hangs on a dead server is killed by QProcess.
    ~SinkOutput() override {
        mPlayer.terminate();
        mPlayer.waitForFinished(1000);
    }

    bool start(QString* error) {
        mPlayer.start();
        if (mPlayer.waitForStarted())
            return true;
        *error = QStringLiteral("pacat: %1").arg(mPlayer.errorString());
        return false;
    }

    bool write(std::span<const qint16> samples, QString* error) override {
        mPlayer.write(reinterpret_cast<const char*>(samples.data()), qint64(samples.size_bytes()));
        while (mPlayer.state() == QProcess::Running && mPlayer.bytesToWrite() > 0)
            mPlayer.waitForBytesWritten(1000);
        if (mPlayer.state() == QProcess::Running)
            return true;
        *error =
            QStringLiteral("pacat ended: %1").arg(QString::fromLocal8Bit(mPlayer.readAllStandardError()).simplified());
        return false;
    }

    // The server's buffer, and the full pipe to pacat.
    double latency() const override {
        constexpr double kPipe = 65536.0 / (sizeof(qint16) * kCabinChannels * kCabinRate);
        return kBufferMs / 1000.0 + kPipe;
    }

    bool finish(QString*) override {
        mPlayer.closeWriteChannel();
        return true;
    }

private:
    QProcess mPlayer;
};

class WavOutput : public SoundOutput {
public:
    explicit WavOutput(SNDFILE* file) : mFile(file) {}
    ~WavOutput() override { sf_close(mFile); }

    bool write(std::span<const qint16> samples, QString* error) override {
        const auto count = sf_count_t(samples.size());
        if (sf_write_short(mFile, samples.data(), count) == count)
            return true;
        *error = QString::fromLocal8Bit(sf_strerror(mFile));
        return false;
    }

    bool finish(QString*) override {
        sf_write_sync(mFile);
        return true;
    }

private:
    SNDFILE* const mFile;
};

class RawOutput : public SoundOutput {
public:
    bool write(std::span<const qint16> samples, QString* error) override {
        return std::fwrite(samples.data(), sizeof(qint16), samples.size(), stdout) == samples.size() || fail(error);
    }

    bool finish(QString* error) override { return std::fflush(stdout) == 0 || fail(error); }

private:
    static bool fail(QString* error) {
        *error = QStringLiteral("standard output: %1").arg(QString::fromLocal8Bit(std::strerror(errno)));
        return false;
    }
};

}  // namespace

std::unique_ptr<SoundOutput> SoundOutput::toSink(const QString& sink, QString* error) {
    auto output = std::make_unique<SinkOutput>(sink);
    if (!output->start(error))
        return nullptr;
    return output;
}

std::unique_ptr<SoundOutput> SoundOutput::toWav(const QString& path, QString* error) {
    SF_INFO info{};
    info.samplerate = kCabinRate;
    info.channels = kCabinChannels;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* file = sf_open(QFile::encodeName(path).constData(), SFM_WRITE, &info);
    if (file)
        return std::make_unique<WavOutput>(file);
    *error = QStringLiteral("%1: %2").arg(path, QString::fromLocal8Bit(sf_strerror(nullptr)));
    return nullptr;
}

std::unique_ptr<SoundOutput> SoundOutput::toStandardOutput() {
    return std::make_unique<RawOutput>();
}
