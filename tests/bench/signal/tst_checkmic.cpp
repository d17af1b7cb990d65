#include "tests/bench/signal/Sound.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

// Tolerances: 0.1 dB for levels and differences, the last digit that is printed.
constexpr double kTolerance = 0.11;

using Microphones = std::vector<Samples>;

class CheckMicTest : public QObject {
    Q_OBJECT

private slots:
    void judgesEachMicrophone_data();
    void judgesEachMicrophone();
    void keepsTheLevelThreshold_data();
    void keepsTheLevelThreshold();
    void readsUnfinishedHeaders();

private:
    struct Line {
        QString word;
        double level;
        double difference;  // not a number where none is given
        QString advice;
    };

    QString path(const char* name) const { return mDirectory.filePath(name); }
    Outcome check(const QByteArray& wav) const {
        writeFile(path("test.wav"), wav);
        return runProgram("check-mic", {path("test.wav"), "0.001", "1.5"});
    }
    static std::vector<Line> parse(const QStringList& lines);

    QTemporaryDir mDirectory;
};

std::vector<CheckMicTest::Line> CheckMicTest::parse(const QStringList& lines) {
    static const QRegularExpression kLine(R"(^mic (\d+)  ([A-Z]+) +(\S+) dBFS +(\S+ dB|-) *(.*)$)");
    std::vector<Line> result;
    for (const QString& text : lines.mid(1)) {
        const QRegularExpressionMatch match = kLine.match(text);
        if (!match.hasMatch() || match.captured(1).toInt() != static_cast<int>(result.size()) + 1) {
            return {};
        }
        bool isNumber = false;
        const double difference = match.captured(4).remove(" dB").toDouble(&isNumber);
        result.push_back(
            {match.captured(2), match.captured(3).toDouble(), isNumber ? difference : std::nan(""), match.captured(5)});
    }
    return result;
}

// Eight microphones hear a sound of -40 dBFS each; what is wrong with the third one is the row's.
void CheckMicTest::judgesEachMicrophone_data() {
    QTest::addColumn<Samples>("third");
    QTest::addColumn<QString>("word");
    QTest::addColumn<double>("level");
    QTest::addColumn<QString>("advice");
    const double none = -INFINITY;
    const auto zeroed = [](Samples samples, int from, int count) {
        std::fill_n(samples.begin() + from, count, 0.0);
        return samples;
    };
    const auto held = [](Samples samples, double value, int count) {
        std::fill_n(samples.begin() + 24000, count, value);
        return samples;
    };
    const Samples sound = sine(2, 1003, 0.02) + noise(2, 0.0001, 3);
    const Samples same = sine(2, 997, 0.0141421356) + noise(2, 0.0001, 2);

    QTest::newRow("sine") << sine(2, 1000, 0.0141421356) << "OK" << -40.0 << "";
    QTest::newRow("other noise") << noise(2, 0.01, 77) << "OK" << -40.0 << "";
    QTest::newRow("DC beside sound") << sine(2, 1000, 0.0141421356) + Samples(96000, 0.2) << "OK" << -40.0 << "";
    QTest::newRow("silence") << Samples(96000, 0.0) << "DEAD" << none << "plug";
    QTest::newRow("hiss below the threshold") << noise(2, 0.0008, 9) << "DEAD" << -61.94 << "plug";
    QTest::newRow("full-scale square") << sampled(2, [](double t) { return std::fmod(t, 0.01) < 0.005 ? 1 : -1; })
                                       << "CLIPPED" << 0.0 << "gain";
    QTest::newRow("three samples clipped") << held(sound, -1, 3) << "CLIPPED" << -36.36 << "at 0.50 s";
    QTest::newRow("two samples at full scale") << held(same, 1, 2) << "OK" << -39.18 << "";
    QTest::newRow("stands at a value") << Samples(96000, 0.25) << "STUCK" << none << "+0.2500";
    QTest::newRow("DC with hiss") << noise(2, 0.0005, 5) + Samples(96000, -0.1) << "STUCK" << -66.02 << "-0.1";
    QTest::newRow("freezes") << held(same, 0.01, 9600) << "STUCK" << -40.04 << "for 200 ms at 0.50 s";
    QTest::newRow("copy of the second") << Samples() << "DUPLICATE" << -40.0 << "mic 2";
    QTest::newRow("10 ms of zeros") << zeroed(same, 48000, 480) << "OK" << -40.0 << "";
    QTest::newRow("more than 10 ms of zeros")
        << zeroed(zeroed(same, 48000, 481), 60000, 960) << "DROPOUT" << -40.06 << "for 20 ms at 1.25 s (longest of 2)";
    QTest::newRow("zeros at the end") << zeroed(same, 95000, 1000) << "DROPOUT" << -40.05 << "at 1.98 s";
    QTest::newRow("too loud") << noise(2, 0.02, 8) << "LEVEL" << -33.98 << "louder";
    QTest::newRow("too quiet") << noise(2, 0.005, 8) << "LEVEL" << -46.02 << "quieter";
}

void CheckMicTest::judgesEachMicrophone() {
    QFETCH(Samples, third);
    QFETCH(QString, word);
    QFETCH(double, level);
    QFETCH(QString, advice);
    Microphones microphones;
    for (unsigned index = 0; index < 8; ++index) {
        microphones.push_back(noise(2, 0.01, 100 + index));
    }
    microphones[2] = third.empty() ? microphones[1] : third;

    const Outcome outcome = check(wavBytes(microphones));
    const bool passes = word == "OK";
    QCOMPARE(outcome.status, passes ? 0 : 1);
    QCOMPARE(outcome.lines.value(0),
             QString("MIC CHECK: %1 (8 ch, 48000 Hz, 2.0 s; RMS>=0.001, diff<=1.5 dB)").arg(passes ? "PASS" : "FAIL"));
    const std::vector<Line> lines = parse(outcome.lines);
    QCOMPARE(lines.size(), std::size_t(8));
    for (std::size_t index = 0; index < lines.size(); ++index) {
        const bool isThird = index == 2;
        const double expected = isThird ? level : -40;
        QCOMPARE(lines[index].word, isThird ? word : QString("OK"));
        QVERIFY2(lines[index].level == expected || std::abs(lines[index].level - expected) < kTolerance,
                 qPrintable(outcome.lines[static_cast<int>(index) + 1]));
        const bool live = lines[index].word != "DEAD" && expected > -60;
        QCOMPARE(!std::isnan(lines[index].difference), live);
        QVERIFY(!live || std::abs(lines[index].difference - (expected + 40)) < kTolerance);
    }
    QVERIFY2(lines[2].advice.contains(advice), qPrintable(lines[2].advice));
    QCOMPARE(lines[2].advice.isEmpty(), passes);
}

void CheckMicTest::keepsTheLevelThreshold_data() {
    QTest::addColumn<double>("decibels");
    QTest::addColumn<QString>("word");
    QTest::newRow("1.4 louder") << 1.4 << "OK";
    QTest::newRow("1.6 louder") << 1.6 << "LEVEL";
    QTest::newRow("1.4 quieter") << -1.4 << "OK";
    QTest::newRow("1.6 quieter") << -1.6 << "LEVEL";
}

// The dead ones would draw the median down if they counted.
void CheckMicTest::keepsTheLevelThreshold() {
    QFETCH(double, decibels);
    const Samples dead(kRate, 0.0);
    const Samples other = sine(1, 600, 0.1 * std::pow(10, decibels / 20));
    const Outcome outcome = check(wavBytes({other, sine(1, 500, 0.1), sine(1, 700, 0.1), dead, dead, dead}));
    const std::vector<Line> lines = parse(outcome.lines);
    QCOMPARE(lines.size(), std::size_t(6));
    QTEST(lines[0].word, "word");
    QVERIFY2(std::abs(lines[0].difference - decibels) < kTolerance, qPrintable(outcome.lines[1]));
}

// A recorder that was killed leaves the size that it had planned; what is there is still judged.
void CheckMicTest::readsUnfinishedHeaders() {
    QByteArray bytes = wavBytes({noise(1, 0.01, 1), noise(1, 0.01, 2)});
    const QString verdict = "MIC CHECK: PASS (2 ch, 48000 Hz, 1.0 s; RMS>=0.001, diff<=1.5 dB)";
    for (const char* size : {"00000080", "ffffffff"}) {
        bytes.replace(40, 4, QByteArray::fromHex(size));
        QCOMPARE(check(bytes).lines.value(0), verdict);
    }
}

QTEST_GUILESS_MAIN(CheckMicTest)
#include "tst_checkmic.moc"
