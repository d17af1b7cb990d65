#include "tests/bench/ProgramRun.h"
#include "tests/bench/signal/Sound.h"
#include "tests/support/Rows.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <numbers>

// Tolerances. Sines at steady speed: 0.05 dB and a tenth of a spectral line. Orders of a fast ramp: 0.5 dB wherever the
// FFT separates them. Offset of the log: 20 ms.
constexpr double kSteadyTolerance = 0.05;
constexpr double kRampTolerance = 0.5;
constexpr int kOffsetTolerance = 20;

// The ramp: 500 to 12,000 RPM in 8 s, four orders.
constexpr double kRampSeconds = 8;
constexpr double kRampStart = 500;
constexpr double kRampSlope = 11500 / kRampSeconds;

struct Order {
    double order;
    double level;  // dBFS
};
constexpr Order kRampOrders[]{{8, -30}, {22, -36}, {24, -33}, {48, -27}};

double rampRpm(double t) {
    return kRampStart + kRampSlope * t;
}

double amplitudeOf(double level) {
    return std::sqrt(2.0) * std::pow(10, level / 20);
}

class WhineTest : public QObject {
    Q_OBJECT

private slots:
    void readsSines_data() {
        const auto row = columns<int, double, double>("fftSize", "offset", "level");
        for (const int fftSize : {2048, 4096, 8192, 16384}) {
            for (const double offset : {0.0, 0.25, 0.5}) {
                QTest::addRow("FFT %d, %.2f off the line", fftSize, offset) << fftSize << offset << -23.0103;
            }
        }
        row("full scale", 8192, 0.5, -3.0103);
        row("faint", 8192, 0.5, -70.0);
    }

    void readsSines() {
        const auto [fftSize, offset, level] = cells<int, double, double>();
        const double line = std::floor(fftSize / 20.0) + offset;
        const double width = double(kRate) / fftSize;
        analyse({sine(2, line * width, amplitudeOf(level))}, steadyLog(2), "sum", fftSize);
        const Line found = strongestNear(line * width, kRate);
        QVERIFY2(std::abs(found.level - level) < kSteadyTolerance, qPrintable(QString::number(found.level)));
        QVERIFY2(std::abs(found.frequency - line * width) < width / 10, qPrintable(QString::number(found.frequency)));
        QVERIFY(std::abs(found.order - line * width / 50) < width / 10 / 50);
        QCOMPARE(found.rpm, 3000.0);
        QVERIFY2(mSaid.contains("the speed hardly changes"), qPrintable(mSaid));
    }

    // Four channels, two of them without sound: their mean has a quarter of each amplitude, 12.04 dB less.
    void readsTheWantedChannel() {
        const Samples silence(kRate, 0.0);
        const auto levelsOf = [&](const char* channel) {
            analyse({sine(1, 1000, amplitudeOf(-20)), sine(1, 2000, amplitudeOf(-32)), silence, silence}, steadyLog(1),
                    channel, 4096);
            return QString::asprintf("%.1f %.1f", strongestNear(1000, 5).level, strongestNear(2000, 5).level);
        };
        QCOMPARE(levelsOf("sum"), QString("-32.0 -44.0"));
        QCOMPARE(levelsOf("left"), QString("-20.0 -inf"));
        QCOMPARE(levelsOf("right"), QString("-inf -32.0"));
    }

    void followsARamp_data() {
        const auto row = columns<int, int>("late", "fftSize");
        for (const int fftSize : {2048, 4096}) {
            for (const int milliseconds : {0, 100, 170, -120}) {
                QTest::addRow("%d ms late, FFT %d", milliseconds, fftSize) << milliseconds << fftSize;
            }
        }
        row("170 ms late, FFT 8192", 170, 8192);
        row("170 ms late, FFT 16384", 170, 16384);
    }

    void followsARamp() {
        const auto [late, fftSize] = cells<int, int>();
        static const Samples kSound = sampled(kRampSeconds, [](double t) {
            const double revolutions = (kRampStart * t + kRampSlope * t * t / 2) / 60;
            double sum = 0;
            for (const Order& order : kRampOrders) {
                sum += amplitudeOf(order.level) * std::sin(2 * std::numbers::pi * order.order * revolutions);
            }
            return sum;
        });
        analyse({kSound + noise(kRampSeconds, 0.001, 1)}, logOf(kRampSeconds, rampRpm, late), "sum", fftSize);
        static const QRegularExpression kOffset("offset: ([+-]\\d+) ms");
        const QRegularExpressionMatch match = kOffset.match(mSaid);
        QVERIFY2(match.hasMatch() && std::abs(match.captured(1).toInt() - late) <= kOffsetTolerance, qPrintable(mSaid));

        // Orders 22 and 24 part where they are five spectral lines from each other; a long frame sweeps over more.
        const double parted = std::max(150.0 * kRate / fftSize, fftSize > 4096 ? 7000.0 : 0.0);
        int checked = 0;
        for (const Line& line : mTable) {
            for (const Order& order : kRampOrders) {
                const bool near = std::abs(line.order - order.order) < 0.4 && line.level > order.level - 20;
                if (line.rpm > parted && near) {
                    ++checked;
                    QVERIFY2(std::abs(line.level - order.level) <= kRampTolerance,
                             qPrintable(QString("order %1: %2 dB").arg(line.order).arg(line.level)));
                    QVERIFY2(std::abs(line.order - order.order) <= order.order / 100,
                             qPrintable(QString("order %1: %2 dB").arg(line.order).arg(line.level)));
                }
            }
        }
        // Each order once in each bin that a frame falls into.
        const double framesPerBin = 50 / kRampSlope * kRate * 4 / fftSize;
        const double bins = (rampRpm(kRampSeconds) - parted) / 50 * std::min(framesPerBin, 1.0);
        QVERIFY2(std::abs(checked - 4 * bins) < 0.05 * 4 * bins,
                 qPrintable(QString("%1 of %2").arg(checked).arg(4 * bins)));
        QStringList summary;
        for (const QString& text : mSaid.split('\n').filter("order:")) {
            summary += QString::number(text.mid(6, 9).toDouble(), 'f', 1);
        }
        QCOMPARE(summary, (QStringList{"48.0", "8.0", "24.0", "22.0"}));
    }

    // Noise of -26.02 dB over 4096 bins lies at -62.1 dB in each. The highest bin of a sine holds its level less 1.76
    // dB: the faint one stands 8 dB above the noise, the hidden one 4 dB.
    void readsWhiteNoise() {
        const double frequency = kRate / 8192.0;
        const double loud = 700 * frequency;
        const double faint = 1500 * frequency;
        const double hidden = 2500 * frequency;
        analyse({noise(20, 0.05, 4) + sine(20, loud, amplitudeOf(-26)) + sine(20, faint, amplitudeOf(-53)) +
                 sine(20, hidden, amplitudeOf(-58))},
                steadyLog(20), "sum", 8192);
        QVERIFY2(mSaid.contains("level: -23.0 dBFS overall"), qPrintable(mSaid));
        QCOMPARE(mTable.size(), std::size_t(2));
        QVERIFY(std::abs(mTable[0].frequency - loud) < frequency / 10);
        QVERIFY(std::abs(mTable[0].level + 26) < kSteadyTolerance);
        QVERIFY(std::abs(mTable[1].frequency - faint) < frequency);
        QVERIFY2(std::abs(mTable[1].level + 53) < 0.5, qPrintable(QString::number(mTable[1].level)));
    }

    void isSilentAboutSilence() {
        analyse({Samples(kRate, 0.0), Samples(kRate, 0.0)}, steadyLog(1), "sum", 8192);
        QVERIFY(mTable.empty());
        QVERIFY2(mSaid.contains("no order and no tone"), qPrintable(mSaid));
    }

    void survivesBadLogs_data() {
        const auto row = columns<QByteArray, bool, QString>("log", "usable", "warning");
        const QByteArray good = steadyLog(1);
        row("CR LF", QByteArray(good).replace("\n", "\r\n"), true, "");
        row("last line cut", good + "1010, 30", true, "rpm.txt:22: the last line has no line end");
        row("missing", {}, false, "No such file");
        row("text", "Time, RPM\n" + good, false, "rpm.txt:1: is no \"MILLISECONDS, RPM\"");
        row("time goes back", good + "990, 3000\n", false, "rpm.txt:22: its time is before");
        row("zeros of a crash", good + QByteArray(64, '\0') + "\n", false, "rpm.txt:22:");
        row("standing", logOf(1, [](double) { return 0; }), false, "gives no speed");
    }

    void survivesBadLogs() {
        const auto [log, usable, warning] = cells<QByteArray, bool, QString>();
        analyse({sine(1, 1000, 0.1)}, log, "sum", 4096);
        const Line found = strongestNear(1000, 1);
        QVERIFY(std::abs(found.level + 23.01) < kSteadyTolerance);
        QCOMPARE(found.order, usable ? 20.0 : 0.0);
        QCOMPARE(found.rpm, usable ? 3000.0 : 0.0);
        QVERIFY2(mSaid.contains(warning), qPrintable(mSaid));
        QCOMPARE(mSaid.contains("warning"), !warning.isEmpty());
        QCOMPARE(mSaid.contains("orders read 0"), !usable);
    }

private:
    struct Line {
        double frequency, order, level, rpm;
    };

    // Without a log if that is null.
    void analyse(const std::vector<Samples>& channels, const QByteArray& log, const char* channel, int fftSize) {
        const QTemporaryDir place;
        const QString wav = writeFile(place.filePath("test.wav"), wavBytes(channels));
        const QString rpm = place.filePath("rpm.txt");
        if (!log.isNull()) {
            writeFile(rpm, log);
        }
        const ProgramRun run = ProgramRun::of(NVH_BIN_DIR "/whine", {wav, rpm, channel, QString::number(fftSize)});
        mSaid = QString::fromUtf8(run.errors);
        parse(run.output);
        QCOMPARE(run.status, 0);
    }

    // Reads the table as it is read where it is judged, and checks what holds for every table.
    void parse(const QByteArray& table) {
        static const QRegularExpression kBlanks("\\s+");
        mTable.clear();
        for (const QString& text : QString::fromUtf8(table).split('\n', Qt::SkipEmptyParts)) {
            const QStringList fields = text.split(kBlanks);
            QCOMPARE(fields.size(), 4);
            bool ok[4]{};
            mTable.push_back({fields[0].toDouble(&ok[0]), fields[1].toDouble(&ok[1]), fields[2].toDouble(&ok[2]),
                              fields[3].toDouble(&ok[3])});
            QVERIFY2(ok[0] && ok[1] && ok[2] && ok[3], qPrintable(text));
            if (mTable.size() > 1) {
                const Line& above = mTable[mTable.size() - 2];
                const Line& line = mTable.back();
                QVERIFY(line.rpm > above.rpm || (line.rpm == above.rpm && line.level <= above.level));
            }
        }
    }

    // Of level minus infinity if there is none.
    Line strongestNear(double frequency, double reach) const {
        Line found{0, 0, -INFINITY, 0};
        for (const Line& line : mTable) {
            if (std::abs(line.frequency - frequency) <= reach && line.level > found.level) {
                found = line;
            }
        }
        return found;
    }

    // A line each 50 ms, as a vehicle's signal would give them.
    static QByteArray logOf(double seconds, const std::function<double(double)>& rpm, int late = 0) {
        QByteArray log;
        for (int time = 0; time <= seconds * 1000; time += 50) {
            if (time + late >= 0) {
                log += QByteArray::number(time + late) + ", " + QByteArray::number(int(rpm(time / 1000.0))) + "\n";
            }
        }
        return log;
    }

    static QByteArray steadyLog(double seconds) {
        return logOf(seconds, [](double) { return 3000; });
    }

    std::vector<Line> mTable;
    QString mSaid;  // beside the table
};

QTEST_GUILESS_MAIN(WhineTest)
#include "tst_whine.moc"
