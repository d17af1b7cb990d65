#include "tests/bench/ProgramRun.h"
#include "tests/bench/signal/Sound.h"
#include "tests/support/Rows.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

// Tolerances: 0.1 dB for levels and differences, the last digit that is printed.
constexpr double kTolerance = 0.11;

class CheckMicTest : public QObject {
    Q_OBJECT

private slots:
    // Eight microphones hear a sound of -40 dBFS each; what is wrong with the third one is the row's.
    void judgesEachMicrophone_data() {
        const auto row = columns<Samples, QString, double, QString>("third", "word", "level", "advice");
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

        row("sine", sine(2, 1000, 0.0141421356), "OK", -40.0, "");
        row("silence", Samples(96000, 0.0), "DEAD", none, "plug");
        row("hiss below the threshold", noise(2, 0.0008, 9), "DEAD", -61.94, "plug");
        row("full-scale square", sampled(2, [](double t) { return std::fmod(t, 0.01) < 0.005 ? 1 : -1; }), "CLIPPED",
            0.0, "gain");
        row("three samples clipped", held(sound, -1, 3), "CLIPPED", -36.36, "at 0.50 s");
        row("two samples at full scale", held(same, 1, 2), "OK", -39.18, "");
        row("stands at a value", Samples(96000, 0.25), "STUCK", none, "+0.2500");
        row("DC with hiss", noise(2, 0.0005, 5) + Samples(96000, -0.1), "STUCK", -66.02, "-0.1");
        row("freezes", held(same, 0.01, 9600), "STUCK", -40.04, "for 200 ms at 0.50 s");
        row("copy of the second", Samples(), "DUPLICATE", -40.0, "mic 2");
        row("10 ms of zeros", zeroed(same, 48000, 480), "OK", -40.0, "");
        row("more than 10 ms of zeros", zeroed(zeroed(same, 48000, 481), 60000, 960), "DROPOUT", -40.06,
            "for 20 ms at 1.25 s (longest of 2)");
        row("zeros at the end", zeroed(same, 95000, 1000), "DROPOUT", -40.05, "at 1.98 s");
        row("too loud", noise(2, 0.02, 8), "LEVEL", -33.98, "louder");
        row("too quiet", noise(2, 0.005, 8), "LEVEL", -46.02, "quieter");
    }

    void judgesEachMicrophone() {
        const auto [third, word, level, advice] = cells<Samples, QString, double, QString>();
        std::vector<Samples> microphones;
        for (unsigned index = 0; index < 8; ++index) {
            microphones.push_back(noise(2, 0.01, 100 + index));
        }
        microphones[2] = third.empty() ? microphones[1] : third;

        check(wavBytes(microphones));
        const bool passes = word == "OK";
        QCOMPARE(mStatus, passes ? 0 : 1);
        QCOMPARE(
            mSaid.value(0),
            QString("MIC CHECK: %1 (8 ch, 48000 Hz, 2.0 s; RMS>=0.001, diff<=1.5 dB)").arg(passes ? "PASS" : "FAIL"));
        QCOMPARE(mLines.size(), std::size_t(8));
        for (std::size_t index = 0; index < mLines.size(); ++index) {
            const bool isThird = index == 2;
            const double expected = isThird ? level : -40;
            QCOMPARE(mLines[index].word, isThird ? word : QString("OK"));
            QVERIFY2(mLines[index].level == expected || std::abs(mLines[index].level - expected) < kTolerance,
                     qPrintable(mSaid[static_cast<int>(index) + 1]));
            const bool live = mLines[index].word != "DEAD" && expected > -60;
            QCOMPARE(!std::isnan(mLines[index].difference), live);
            QVERIFY(!live || std::abs(mLines[index].difference - (expected + 40)) < kTolerance);
        }
        QVERIFY2(mLines[2].advice.contains(advice), qPrintable(mLines[2].advice));
        QCOMPARE(mLines[2].advice.isEmpty(), passes);
    }

    // The dead ones would draw the median down if they counted.
    void keepsTheLevelThreshold() {
        const Samples dead(kRate, 0.0);
        for (const double decibels : {1.4, 1.6, -1.4, -1.6}) {
            const Samples other = sine(1, 600, 0.1 * std::pow(10, decibels / 20));
            check(wavBytes({other, sine(1, 500, 0.1), sine(1, 700, 0.1), dead, dead, dead}));
            QCOMPARE(mLines.size(), std::size_t(6));
            QCOMPARE(mLines[0].word, QString(std::abs(decibels) > 1.5 ? "LEVEL" : "OK"));
            QVERIFY2(std::abs(mLines[0].difference - decibels) < kTolerance, qPrintable(mSaid[1]));
        }
    }

    // A recorder that was killed leaves the size that it had planned; what is there is still judged.
    void readsUnfinishedHeaders() {
        QByteArray bytes = wavBytes({noise(1, 0.01, 1), noise(1, 0.01, 2)});
        const QString verdict = "MIC CHECK: PASS (2 ch, 48000 Hz, 1.0 s; RMS>=0.001, diff<=1.5 dB)";
        for (const char* size : {"00000080", "ffffffff"}) {
            bytes.replace(40, 4, QByteArray::fromHex(size));
            check(bytes);
            QCOMPARE(mSaid.value(0), verdict);
        }
    }

private:
    struct Line {
        QString word;
        double level;
        double difference;  // not a number where none is given
        QString advice;
    };

    void check(const QByteArray& wav) {
        const QString path = writeFile(mDirectory.filePath("test.wav"), wav);
        const ProgramRun run = ProgramRun::of(NVH_BIN_DIR "/check-mic", {path, "0.001", "1.5"});
        mStatus = run.status;
        mSaid = QString::fromUtf8(run.output).split('\n', Qt::SkipEmptyParts);
        static const QRegularExpression kLine(R"(^mic (\d+)  ([A-Z]+) +(\S+) dBFS +(\S+ dB|-) *(.*)$)");
        mLines.clear();
        for (const QString& text : mSaid.mid(1)) {
            const QRegularExpressionMatch match = kLine.match(text);
            QVERIFY2(match.captured(1).toInt() == static_cast<int>(mLines.size()) + 1, qPrintable(text));
            bool isNumber = false;
            const double difference = match.captured(4).remove(" dB").toDouble(&isNumber);
            mLines.push_back({match.captured(2), match.captured(3).toDouble(), isNumber ? difference : std::nan(""),
                              match.captured(5)});
        }
    }

    QTemporaryDir mDirectory;
    int mStatus = -1;
    QStringList mSaid;
    std::vector<Line> mLines;
};

QTEST_GUILESS_MAIN(CheckMicTest)
#include "tst_checkmic.moc"
