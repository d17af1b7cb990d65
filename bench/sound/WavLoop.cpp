#include "bench/sound/WavLoop.h"

#include "bench/sound/Cabin.h"

#include <QFile>

std::unique_ptr<WavLoop> WavLoop::open(const QString& path, QString* error) {
    SF_INFO info{};
    File file(sf_open(QFile::encodeName(path).constData(), SFM_READ, &info));
    if (!file) {
        *error = QStringLiteral("%1: %2").arg(path, QString::fromLocal8Bit(sf_strerror(nullptr)));
        return nullptr;
    }
    if (info.channels != kCabinChannels || info.samplerate != kCabinRate) {
        *error = QStringLiteral("%1: %2 channels at %3 Hz, where the cabin has %4 at %5 Hz")
                     .arg(path)
                     .arg(info.channels)
                     .arg(info.samplerate)
                     .arg(kCabinChannels)
                     .arg(kCabinRate);
        return nullptr;
    }
    if (info.frames == 0) {
        *error = path + QStringLiteral(": holds no sound");
        return nullptr;
    }
    sf_command(file.get(), SFC_SET_SCALE_FLOAT_INT_READ, nullptr, SF_TRUE);
    return std::unique_ptr<WavLoop>(new WavLoop(std::move(file), info.frames));
}

bool WavLoop::render(std::span<qint16> samples) {
    bool atStart = false;
    while (!samples.empty()) {
        const sf_count_t frames = sf_count_t(samples.size()) / kCabinChannels;
        const sf_count_t got = sf_readf_short(mFile.get(), samples.data(), frames);
        // A file that is cut short under us has nothing even at its start.
        if (got <= 0 && atStart)
            return false;
        atStart = got < frames;
        if (atStart)
            playFrom(0.0);
        samples = samples.subspan(size_t(got) * kCabinChannels);
    }
    return true;
}

void WavLoop::playFrom(double seconds) {
    sf_seek(mFile.get(), sf_count_t(seconds * kCabinRate) % mFrames, SEEK_SET);
}
