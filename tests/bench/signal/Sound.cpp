#include "tests/bench/signal/Sound.h"

#include <QDataStream>
#include <QIODevice>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <random>

Samples sampled(double seconds, const std::function<double(double)>& function) {
    Samples samples(static_cast<std::size_t>(std::lround(seconds * kRate)));
    for (std::size_t index = 0; index < samples.size(); ++index) {
        samples[index] = function(static_cast<double>(index) / kRate);
    }
    return samples;
}

Samples sine(double seconds, double frequency, double amplitude) {
    return sampled(seconds, [=](double t) { return amplitude * std::sin(2 * std::numbers::pi * frequency * t); });
}

Samples noise(double seconds, double rms, unsigned seed) {
    std::mt19937 generator(seed);
    std::normal_distribution<double> distribution(0, rms);
    return sampled(seconds, [&](double) { return distribution(generator); });
}

Samples operator+(Samples first, const Samples& second) {
    std::transform(second.begin(), second.end(), first.begin(), first.begin(), std::plus());
    return first;
}

QByteArray wavBytes(const std::vector<Samples>& channels) {
    const auto count = static_cast<quint16>(channels.size());
    const auto frames = static_cast<quint32>(channels.front().size());
    const quint32 dataSize = frames * count * 2;
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.writeRawData("RIFF", 4);
    stream << quint32(dataSize + 36);
    stream.writeRawData("WAVEfmt ", 8);
    stream << quint32(16) << quint16(1) << count << quint32(kRate) << quint32(kRate * count * 2) << quint16(count * 2)
           << quint16(16);
    stream.writeRawData("data", 4);
    stream << dataSize;
    for (quint32 frame = 0; frame < frames; ++frame) {
        for (const Samples& channel : channels) {
            stream << static_cast<qint16>(std::clamp(std::lround(channel[frame] * 32768), -32768L, 32767L));
        }
    }
    return bytes;
}
