#include "bench/measuring/SampleRecording.h"

#include <QFile>
#include <QRandomGenerator>
#include <QtEndian>

#include <cmath>
#include <numbers>
#include <vector>

namespace {

constexpr int kChannels = 8;
constexpr int kRate = 48000;
constexpr int kFrameBytes = kChannels * int(sizeof(qint16));

template <typename Number>
QByteArray littleEndian(Number number) {
    const Number little = qToLittleEndian(number);
    return QByteArray(reinterpret_cast<const char*>(&little), sizeof little);
}

QByteArray header(int seconds) {
    const quint32 bytes = quint32(seconds) * kRate * kFrameBytes;
    return "RIFF" + littleEndian<quint32>(bytes + 36) + "WAVEfmt " + littleEndian<quint32>(16) +
           littleEndian<quint16>(1) + littleEndian<quint16>(kChannels) + littleEndian<quint32>(kRate) +
           littleEndian<quint32>(kRate * kFrameBytes) + littleEndian<quint16>(kFrameBytes) + littleEndian<quint16>(16) +
           "data" + littleEndian<quint32>(bytes);
}

}  // namespace

bool writeSampleRecording(const QString& path, int seconds) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QRandomGenerator random(1);
    std::vector<qint16> second(std::size_t(kRate) * kChannels);
    for (int frame = 0; frame < kRate; ++frame) {
        const double tone = 800.0 * std::sin(2.0 * std::numbers::pi * 440.0 * frame / kRate);
        for (int channel = 0; channel < kChannels; ++channel)
            second[std::size_t(frame * kChannels + channel)] = qint16(tone + random.bounded(400) - 200);
    }
    file.write(header(seconds));
    for (int index = 0; index < seconds; ++index)
        file.write(reinterpret_cast<const char*>(second.data()), qint64(second.size() * sizeof(qint16)));
    return file.flush();
}
