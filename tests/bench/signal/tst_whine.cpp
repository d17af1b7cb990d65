#include "tests/bench/signal/Sound.h"

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
    void readsSines_data();
    void readsSines();
    void readsTheWantedChannel();
    void followsARamp_data();
    void followsARamp();
    void readsWhiteNoise();
    void isSilentAboutSilence();
    void tellsTonesFromOrders();
    void leavesOutWhatHasNoSpeed_data();
    void leavesOutWhatHasNoSpeed();
    void survivesBadLogs_data();
    void survivesBadLogs();

private:
    struct Line {
        double frequency, order, level, rpm;
    };

    QString path(const char* name) const { return mDirectory.filePath(name); }
    Outcome analyse(const std::vector<Samples>& channels, const QByteArray& log, const char* channel, int fftSize);
    void parse(const QStringList& lines);
    Line strongestNear(double frequency, double reach) const;
    static QByteArray logOf(double seconds, const std::function<double(double)>& rpm, int late = 0);
    static QByteArray steadyLog(double seconds) {
        return logOf(seconds, [](double) { return 3000; });
    }

    QTemporaryDir mDirectory;
    std::vector<Line> mTable;
};

// A line each 50 ms, as a vehicle's signal would give them.
QByteArray WhineTest::logOf(double seconds, const std::function<double(double)>& rpm, int late) {
    QByteArray log;
    for (int time = 0; time <= seconds * 1000; time += 50) {
        if (time + late >= 0) {
            log += QByteArray::number(time + late) + ", " + QByteArray::number(int(rpm(time / 1000.0))) + "\n";
        }
    }
    return log;
}

Outcome WhineTest::analyse(const std::vector<Samples>& channels, const QByteArray& log, const char* channel,
                           int fftSize) {
    writeFile(path("test.wav"), wavBytes(channels));
    writeFile(path("rpm.txt"), log);
    Outcome outcome = runProgram("whine", {path("test.wav"), path("rpm.txt"), channel, QString::number(fftSize)});
    parse(outcome.lines);
    return outcome;
}

// Reads the table as it is read where it is judged, and checks what holds for every table.
void WhineTest::parse(const QStringList& lines) {
    static const QRegularExpression kBlanks("\\s+");
    mTable.clear();
    for (const QString& text : lines) {
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
WhineTest::Line WhineTest::strongestNear(double frequency, double reach) const {
    Line found{0, 0, -INFINITY, 0};
    for (const Line& line : mTable) {
        if (std::abs(line.frequency - frequency) <= reach && line.level > found.level) {
            found = line;
        }
    }
    return found;
}

void WhineTest::readsSines_data() {
    QTest::addColumn<int>("fftSize");
    QTest::addColumn<double>("line");
    QTest::addColumn<double>("level");
    const auto add = [](int fftSize, double offset, double level) {
        QTest::addRow("FFT %d, %.2f off the line, %.1f dB", fftSize, offset, level)
            << fftSize << std::floor(fftSize / 20.0) + offset << level;
    };
    for (const int fftSize : {2048, 4096, 8192, 16384}) {
        for (const double offset : {0.0, 0.25, 0.5}) {
            add(fftSize, offset, -23.0103);  // amplitude 0.1
        }
    }
    add(8192, 0.5, -3.0103);  // full scale
    add(8192, 0.5, -70);
}

void WhineTest::readsSines() {
    QFETCH(int, fftSize);
    QFETCH(double, line);
    QFETCH(double, level);
    const double width = double(kRate) / fftSize;
    const Outcome outcome = analyse({sine(2, line * width, amplitudeOf(level))}, steadyLog(2), "sum", fftSize);
    QCOMPARE(outcome.status, 0);
    const Line found = strongestNear(line * width, kRate);
    QVERIFY2(std::abs(found.level - level) < kSteadyTolerance, qPrintable(QString::number(found.level)));
    QVERIFY2(std::abs(found.frequency - line * width) < width / 10, qPrintable(QString::number(found.frequency)));
    QVERIFY(std::abs(found.order - line * width / 50) < width / 10 / 50);
    QCOMPARE(found.rpm, 3000.0);
    QVERIFY2(outcome.errors.contains("the speed hardly changes"), qPrintable(outcome.errors));
}

// Four channels, two of them without sound: their mean has a quarter of each amplitude, 12.04 dB less.
void WhineTest::readsTheWantedChannel() {
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

void WhineTest::followsARamp_data() {
    QTest::addColumn<int>("late");
    QTest::addColumn<int>("fftSize");
    for (const int fftSize : {2048, 4096}) {
        for (const int milliseconds : {0, 100, 170, -120}) {
            QTest::addRow("%d ms late, FFT %d", milliseconds, fftSize) << milliseconds << fftSize;
        }
    }
    QTest::newRow("170 ms late, FFT 8192") << 170 << 8192;
    QTest::newRow("170 ms late, FFT 16384") << 170 << 16384;
}

void WhineTest::followsARamp() {
    QFETCH(int, late);
    QFETCH(int, fftSize);
    static const Samples kSound = sampled(kRampSeconds, [](double t) {
        const double revolutions = (kRampStart * t + kRampSlope * t * t / 2) / 60;
        double sum = 0;
        for (const Order& order : kRampOrders) {
            sum += amplitudeOf(order.level) * std::sin(2 * std::numbers::pi * order.order * revolutions);
        }
        return sum;
    });
    const Outcome outcome =
        analyse({kSound + noise(kRampSeconds, 0.001, 1)}, logOf(kRampSeconds, rampRpm, late), "sum", fftSize);
    static const QRegularExpression kOffset("offset: ([+-]\\d+) ms");
    const QRegularExpressionMatch match = kOffset.match(outcome.errors);
    QVERIFY2(match.hasMatch() && std::abs(match.captured(1).toInt() - late) <= kOffsetTolerance,
             qPrintable(outcome.errors));

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
    for (const QString& text : outcome.errors.split('\n').filter("order:")) {
        summary += QString::number(text.mid(6, 9).toDouble(), 'f', 1);
    }
    QCOMPARE(summary, (QStringList{"48.0", "8.0", "24.0", "22.0"}));
}

// Noise of -26.02 dB over 4096 bins lies at -62.1 dB in each. The highest bin of a sine holds its level less 1.76 dB:
// the faint one stands 8 dB above the noise, the hidden one 4 dB.
void WhineTest::readsWhiteNoise() {
    const double frequency = kRate / 8192.0;
    const double loud = 700 * frequency;
    const double faint = 1500 * frequency;
    const double hidden = 2500 * frequency;
    const Outcome outcome = analyse({noise(20, 0.05, 4) + sine(20, loud, amplitudeOf(-26)) +
                                     sine(20, faint, amplitudeOf(-53)) + sine(20, hidden, amplitudeOf(-58))},
                                    steadyLog(20), "sum", 8192);
    QVERIFY2(outcome.errors.contains("level: -23.0 dBFS overall"), qPrintable(outcome.errors));
    QVERIFY2(mTable.size() == 2, qPrintable(outcome.lines.join('\n')));
    QVERIFY(std::abs(mTable[0].frequency - loud) < frequency / 10);
    QVERIFY(std::abs(mTable[0].level + 26) < kSteadyTolerance);
    QVERIFY(std::abs(mTable[1].frequency - faint) < frequency);
    QVERIFY2(std::abs(mTable[1].level + 53) < 0.5, qPrintable(outcome.lines[1]));
}

void WhineTest::isSilentAboutSilence() {
    const Outcome outcome = analyse({Samples(kRate, 0.0), Samples(kRate, 0.0)}, steadyLog(1), "sum", 8192);
    QCOMPARE(outcome.status, 0);
    QVERIFY(outcome.lines.isEmpty());
    QVERIFY2(outcome.errors.contains("no order and no tone"), qPrintable(outcome.errors));
}

void WhineTest::tellsTonesFromOrders() {
    const auto rpm = [](double t) { return 3000 + 500 * t; };
    const Samples sound = sampled(4, [](double t) {
        return 0.05 * std::sin(2 * std::numbers::pi * 10000 * t) +
               0.02 * std::sin(2 * std::numbers::pi * 9.73 * (3000 * t + 250 * t * t) / 60);
    });
    const Outcome outcome = analyse({sound + noise(4, 0.001, 6)}, logOf(4, rpm), "sum", 4096);
    QVERIFY2(QRegularExpression("tone: +10000.\\d\\d Hz +-29.0").match(outcome.errors).hasMatch(),
             qPrintable(outcome.errors));
    QVERIFY2(QRegularExpression("order: +9.73 +-3[67].").match(outcome.errors).hasMatch(), qPrintable(outcome.errors));
    QCOMPARE(outcome.errors.count("tone:"), 1);
    QCOMPARE(outcome.errors.count("order:"), 1);
}

void WhineTest::leavesOutWhatHasNoSpeed_data() {
    QTest::addColumn<QByteArray>("log");
    const QByteArray whole = logOf(4, [](double) { return 3000; });
    const auto cut = [&](const char* from, const char* to) {
        QByteArray log = whole;
        const auto start = log.indexOf(from);
        return log.remove(start, to ? log.indexOf(to) - start : log.size());
    };
    QTest::newRow("after the log's end") << cut("1500,", nullptr);
    QTest::newRow("before its beginning") << cut("0,", "2450,");
    QTest::newRow("in a gap") << cut("1500,", "2450,");
    QTest::newRow("below 300 RPM") << logOf(4, [](double t) { return t > 1.4 && t < 2.6 ? 299 : 3000; });
}

// A tone from 1.6 to 2.4 s, where the log gives no speed, beside one that is always there.
void WhineTest::leavesOutWhatHasNoSpeed() {
    QFETCH(QByteArray, log);
    const Samples sound = sampled(4, [](double t) {
        return 0.1 * std::sin(2 * std::numbers::pi * 1000 * t) +
               (t > 1.6 && t < 2.4 ? 0.1 * std::sin(2 * std::numbers::pi * 5000 * t) : 0);
    });
    analyse({sound}, log, "sum", 4096);
    QVERIFY(strongestNear(1000, 5).level > -24);
    QVERIFY(strongestNear(5000, 1000).level < -90);
    // With a speed all the time it is there.
    analyse({sound}, steadyLog(4), "sum", 4096);
    QVERIFY(strongestNear(5000, 5).level > -40);
}

void WhineTest::survivesBadLogs_data() {
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<bool>("usable");
    QTest::addColumn<QString>("warning");
    const QByteArray good = steadyLog(1);
    QTest::newRow("no blank") << QByteArray(good).replace(", ", ",") << true << "";
    QTest::newRow("CR LF") << QByteArray(good).replace("\n", "\r\n") << true << "";
    QTest::newRow("two values at one time") << good + "1000, 3001\n" << true << "";
    QTest::newRow("last line cut") << good + "1010, 30" << true << "rpm.txt:22: the last line has no line end";
    QTest::newRow("missing") << QByteArray() << false << "No such file";
    QTest::newRow("empty") << QByteArray("") << false << "holds no whole line";
    QTest::newRow("text") << "Time, RPM\n" + good << false << "rpm.txt:1: is no \"MILLISECONDS, RPM\"";
    QTest::newRow("fraction") << good + "1010, 3000.5\n" << false << "rpm.txt:22:";
    QTest::newRow("negative time") << "-5, 3000\n" + good << false << "rpm.txt:1:";
    QTest::newRow("beyond all motors") << good + "1010, 100001\n" << false << "rpm.txt:22: no motor";
    QTest::newRow("time goes back") << good + "990, 3000\n" << false << "rpm.txt:22: its time is before";
    QTest::newRow("zeros of a crash") << good + QByteArray(64, '\0') + "\n" << false << "rpm.txt:22:";
    QTest::newRow("one line") << QByteArray("0, 3000\n") << false << "gives no speed";
    QTest::newRow("standing") << logOf(1, [](double) { return 0; }) << false << "gives no speed";
    QTest::newRow("backwards") << logOf(1, [](double) { return -3000; }) << false << "gives no speed";
}

void WhineTest::survivesBadLogs() {
    QFETCH(QByteArray, log);
    QFETCH(bool, usable);
    QFETCH(QString, warning);
    writeFile(path("test.wav"), wavBytes({sine(1, 1000, 0.1)}));
    const QString file = path(log.isNull() ? "missing.txt" : "rpm.txt");
    if (!log.isNull()) {
        writeFile(file, log);
    }
    const Outcome outcome = runProgram("whine", {path("test.wav"), file, "sum", "4096"});
    QCOMPARE(outcome.status, 0);
    parse(outcome.lines);
    const Line found = strongestNear(1000, 1);
    QVERIFY(std::abs(found.level + 23.01) < kSteadyTolerance);
    QCOMPARE(found.order, usable ? 20.0 : 0.0);
    QCOMPARE(found.rpm, usable ? 3000.0 : 0.0);
    QVERIFY2(outcome.errors.contains(warning), qPrintable(outcome.errors));
    QCOMPARE(outcome.errors.contains("warning"), !warning.isEmpty());
    QCOMPARE(outcome.errors.contains("orders read 0"), !usable);
}

QTEST_GUILESS_MAIN(WhineTest)
#include "tst_whine.moc"
