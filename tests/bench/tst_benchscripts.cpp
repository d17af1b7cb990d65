// bench/up and bench/down, with the recorder program that a vehicle has.

#include "tests/bench/ProgramRun.h"

#include <QDir>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <cmath>

class TestBenchScripts : public QObject {
    Q_OBJECT

private slots:
    void init() {
        mPlace = std::make_unique<QTemporaryDir>();
        mState = mPlace->filePath("state");
    }

    void cleanup() {
        const QMap<QString, int> before = running();
        QCOMPARE(bench("down"), 0);
        for (const int pid : before) {
            const QByteArray stat = readFile(QStringLiteral("/proc/%1/stat").arg(pid));
            QVERIFY(stat.isEmpty() || stat.contains(") Z "));
        }
        QVERIFY(running().isEmpty());
    }

    void recordsTheCabin() {
        QVERIFY2(bench("up", {"--port", "0", "--no-gateway"}) == 0, mSaid.constData());
        const QSettings settings(mState + "/bench.ini", QSettings::IniFormat);
        QVERIFY(settings.value("nvh/LogVerbose").toBool());
        const QString wav = settings.value("audio/capturing_file_name").toString();
        for (int take = 0; take < 2; ++take) {
            QProcess recorder;
            recorder.start(
                "sh", {"-c", R"(. "$0/env"; exec /usr/bin/arecord -Dapp_in_diagnostic -c8 -r48000 -fS16_LE -N "$1")",
                       mState, wav});
            QVERIFY(recorder.waitForStarted());
            QVERIFY2(!recorder.waitForFinished(2000), recorder.readAllStandardError().constData());
            recorder.terminate();
            QVERIFY(recorder.waitForFinished(5000));

            const QByteArray samples = readFile(wav).mid(44);
            const int frames = int(samples.size()) / 16;
            QVERIFY2(frames > 1.7 * 48000 && frames < 2.1 * 48000, qPrintable(QString::number(frames)));
            const auto* const raw = reinterpret_cast<const qint16*>(samples.constData());
            // From the first twentieth of a second to the last, on every channel.
            for (const int from : {0, frames - 2400}) {
                std::array<double, 8> power{};
                for (int i = from * 8; i < (from + 2400) * 8; ++i)
                    power[size_t(i % 8)] += raw[i] * double(raw[i]) / 2400.0 / 32768.0 / 32768.0;
                for (const double channel : power)
                    QVERIFY(std::sqrt(channel) > 0.002);
            }
        }
        const QString list = settings.value("nvh/vdtStaticURL").toString();
        QVERIFY(ProgramRun::of("curl", {"-sS", list}).output.contains("\"Name\""));
    }

    void leavesAloneWhatRuns() {
        const QStringList arguments{"--port", "0", "--gateway-port", "0", "--no-sound"};
        QVERIFY2(bench("up", arguments) == 0, mSaid.constData());
        const QMap<QString, int> first = running();
        QCOMPARE(first.keys(), QStringList({"factory-server", "gateway-sim"}));
        QVERIFY2(mSaid.contains(" UDP 127.0.0.1:"), mSaid.constData());
        QVERIFY2(bench("up", arguments) == 0, mSaid.constData());
        QCOMPARE(mSaid.count("already running"), 2);
        QCOMPARE(running(), first);
    }

    void endsWhatItStartedWhenSomethingFails() {
        const QString trace = writeFile(mPlace->filePath("torn.csv"), "t_s,VAPI_motorRPM\n0,1\n1,x\n");
        QCOMPARE(bench("up", {"--port", "0", "--trace", trace}), 1);
        QVERIFY2(mSaid.contains("torn.csv:3:"), mSaid.constData());
        QVERIFY(running().isEmpty());
        QVERIFY(!QFile::exists(mState + "/pulse/native"));
        QCOMPARE(bench("up", {"--pots", "0"}), 2);
    }

private:
    int bench(const QString& script, const QStringList& arguments = {}) {
        qputenv("NVH_BENCH_STATE", mState.toLocal8Bit());
        qputenv("NVH_BIN", NVH_BIN_DIR);
        const ProgramRun run = ProgramRun::of(NVH_SOURCE_DIR "/bench/" + script, arguments);
        mSaid = run.output + run.errors;
        return run.status;
    }

    // Process numbers by program, of those that live.
    QMap<QString, int> running() const {
        QMap<QString, int> found;
        const QDir state(mState);
        for (const QString& name : state.entryList({"*.pid"}))
            found.insert(name.chopped(4), readFile(state.filePath(name)).split(' ').first().toInt());
        return found;
    }

    std::unique_ptr<QTemporaryDir> mPlace;
    QString mState;
    QByteArray mSaid;
};

QTEST_GUILESS_MAIN(TestBenchScripts)
#include "tst_benchscripts.moc"
