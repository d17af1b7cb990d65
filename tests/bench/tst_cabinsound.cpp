// The cabin's sound, measured: what a trace says must be found in the samples.

#include "bench/sound/Cabin.h"
#include "tests/bench/ProgramRun.h"

#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <complex>
#include <functional>
#include <numbers>
#include <vector>

namespace {

ProgramRun cabinSound(const QStringList& arguments) {
    return ProgramRun::of(NVH_BIN_DIR "/cabin-sound", arguments);
}

using Channel = std::vector<double>;

Channel channelOf(const QByteArray& samples, int channel) {
    Channel x(size_t(samples.size()) / sizeof(qint16) / kCabinChannels);
    const auto* const raw = reinterpret_cast<const qint16*>(samples.constData());
    for (size_t i = 0; i < x.size(); ++i)
        x[i] = raw[i * kCabinChannels + size_t(channel)] / 32768.0;
    return x;
}

double rms(const Channel& x) {
    double sum = 0.0;
    for (const double value : x)
        sum += value * value;
    return std::sqrt(sum / double(x.size()));
}

// Level of a tone whose phase, in turns, is a function of time: a single bin of a Fourier transform.
double toneLevel(const Channel& x, const std::function<double(double)>& turnsAt) {
    std::complex<double> sum = 0.0;
    for (size_t i = 0; i < x.size(); ++i)
        sum += x[i] * std::polar(1.0, -2.0 * std::numbers::pi * turnsAt(double(i) / kCabinRate));
    return std::abs(sum) * std::numbers::sqrt2 / double(x.size());
}

double toneLevel(const Channel& x, double frequency) {
    return toneLevel(x, [frequency](double t) { return frequency * t; });
}

double decibels(double ratio) {
    return 20.0 * std::log10(ratio);
}

}  // namespace

class TestCabinSound : public QObject {
    Q_OBJECT

private slots:
    // 6000 1/min: the frequency of an order is a hundred times its number. A direction is not heard.
    void givesTheSameSoundForTheSameSeed() {
        const QByteArray rows = "0,30,3000,100\n2,40,4000,200\n";
        const QByteArray first = sound(rows, 2.0, 7);
        QCOMPARE(first.size(), 2 * kCabinRate * kCabinChannels * int(sizeof(qint16)));
        QVERIFY(sound(rows, 2.0, 7) == first);
        QVERIFY(sound(rows, 2.0, 8) != first);
    }

    void playsOrdersOfTheMotorByItsTorque() {
        const Channel pulling = channelOf(sound("0,10,6000,400\n2,10,6000,400\n"), 0);
        const Channel braking = channelOf(sound("0,-10,-6000,-400\n2,-10,-6000,-400\n"), 0);
        const Channel rolling = channelOf(sound("0,10,6000,0\n2,10,6000,0\n"), 0);
        for (const double frequency : {800.0, 2200.0, 2400.0, 4400.0, 4800.0}) {
            const double level = toneLevel(pulling, frequency);
            QVERIFY(level > 0.003);
            for (const double beside : {-53.0, -21.0, 21.0, 53.0})
                QVERIFY(decibels(level / toneLevel(pulling, frequency + beside)) > 20.0);
            QVERIFY(std::abs(decibels(level / toneLevel(braking, frequency))) < 0.1);
            QVERIFY(decibels(level / toneLevel(rolling, frequency)) > 10.0);
        }
    }

    // From 3000 to 9000 1/min in 4 s: the phase of order 24 follows the integral of the motor's speed to the end.
    void keepsStepWithAChangingMotorSpeed() {
        const Channel x = channelOf(sound("0,0,3000,200\n4,0,9000,200\n", 4.0), 0);
        const auto turnsAt = [](double lateness) {
            return [lateness](double t) {
                const double s = t - lateness;
                return 24.0 * (50.0 * s + 100.0 * s * s / 8.0);
            };
        };
        const double inStep = toneLevel(x, turnsAt(0.0));
        QVERIFY2(inStep > 0.005, qPrintable(QString::number(inStep)));
        QVERIFY(decibels(inStep / toneLevel(x, turnsAt(0.005))) > 10.0);
    }

    void givesEverySeatItsLevelAndDelay() {
        const QByteArray samples = sound("0,60,0,0\n4,60,0,0\n", 4.0);
        const Channel first = channelOf(samples, 0);
        for (int channel = 1; channel < kCabinChannels; ++channel) {
            const Channel here = channelOf(samples, channel);
            const Seat& seat = kSeats[size_t(channel)];
            QVERIFY(std::abs(decibels(rms(here) / rms(first)) - (seat.levelDb - kSeats[0].levelDb)) < 0.3);
            int bestLag = -1;
            double best = 0.0;
            for (int lag = 0; lag < 256; ++lag) {
                double sum = 0.0;
                for (size_t i = 0; i < first.size() / 8; ++i)
                    sum += first[i] * here[i + size_t(lag)];
                if (sum > best) {
                    best = sum;
                    bestLag = lag;
                }
            }
            QVERIFY(std::abs(bestLag - (seat.delayMs - kSeats[0].delayMs) * kCabinRate / 1000.0) <= 2.0);
        }
    }

    void isNeitherSilentNorClipped() {
        for (const char* const values : {"0,0,0", "invalid,invalid,invalid", "4000,90000,100000"}) {
            const QByteArray samples = sound(QString("0,%1\n2,%1\n").arg(values).toLatin1());
            for (int channel = 0; channel < kCabinChannels; ++channel) {
                const Channel x = channelOf(samples, channel);
                QVERIFY2(rms(x) > 0.002, values);
                QVERIFY2(std::all_of(x.begin(), x.end(), [](double value) { return std::abs(value) < 0.96; }), values);
            }
        }
    }

private:
    // Two seconds, or as many as asked for, of a drive whose rows are given without their header.
    QByteArray sound(const QByteArray& rows, double seconds = 2.0, int seed = 1) const {
        const QString trace = writeFile(mPlace.filePath("trace.csv"),
                                        "t_s,VAPI_signedVehicleSpeed,VAPI_motorRPM,VAPI_torqueCmd\n" + rows);
        const ProgramRun run = cabinSound(
            {"--trace", trace, "--out", "-", "--seconds", QString::number(seconds), "--seed", QString::number(seed)});
        return run.status == 0 ? run.output : QByteArray();
    }

    QTemporaryDir mPlace;
};

QTEST_GUILESS_MAIN(TestCabinSound)
#include "tst_cabinsound.moc"
