// What the programs of the bench cannot use, they refuse with status 2 and one line that says which and why.

#include "tests/bench/ProgramRun.h"
#include "tests/bench/signal/Sound.h"
#include "tests/support/Rows.h"

#include <QTemporaryDir>
#include <QUdpSocket>
#include <QtTest>

class TestRefusals : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        const QByteArray sound = wavBytes({sine(0.2, 1000, 0.1)});
        const std::vector<std::pair<const char*, QByteArray>> files{
            {"sound.wav", sound},
            {"torn.wav", sound.left(40)},
            {"short.wav", sound.left(44 + 2 * 4095)},
            {"rpm.txt", "0, 3000\n100, 3000\n200, 3000\n"},
            {"can.log", "(1.0) can1 108#\n"},
            {"torn.csv", "t_s,VAPI_motorRPM\n0,1\n1,fast\n"},
            {"unknown.csv", "t_s,speed_m_s\n0,0\n1,invalid\n2,2\n"},
            {"steep.csv", "t_s,speed_m_s\n0,0\n1,9\n2,18\n"},
            {"gap.json", R"({"0": {"Name": "a"}, "2": {"Name": "b"}})"},
            {"broken.json", "{\n  \"0\": x}"},
        };
        for (const auto& [name, content] : files)
            writeFile(mPlace.filePath(name), content);
    }

    void refusesWhatItCannotUse_data() {
        const auto row = columns<QByteArray>("reason");
        const auto refused = [&row](const char* command, const char* reason) { row(command, reason); };
        refused("check-mic torn.wav 0.001 1.5", "torn.wav: is no WAV file");
        refused("check-mic short.wav 0.001 1.5", "only 0.085 s");
        refused("check-mic sound.wav 0.001 1.5dB", "'1.5dB'");
        refused("whine sound.wav rpm.txt right 2048", "sound.wav: has one channel");
        refused("gateway-sim --log can.log --fault ack-loose=1",
                "--fault ack-loose=1: no such fault; --help lists them");
        refused("gateway-sim --log can.log --port BUSY", "The bound address is already in use");
        refused("cabin-sound --trace torn.csv", "torn.csv:3: \"fast\"");
        refused("drive-trace unknown.csv", "unknown.csv: speed_m_s is no course");
        refused("drive-trace steep.csv", "the car cannot do");
        refused("factory-server --store s --fault upload=delay", "upload=delay");
        refused("factory-server --store s --fault static=no-url", "static=no-url");
        refused("factory-server --store s --list gap.json", "gap.json: no row \"1\"");
        refused("factory-server --store s --list broken.json", "broken.json: line 2");
    }

    void refusesWhatItCannotUse() {
        QFETCH(QByteArray, reason);
        QUdpSocket busy;
        QVERIFY(busy.bind(QHostAddress::LocalHost));
        QStringList words =
            QString(QTest::currentDataTag()).replace("BUSY", QString::number(busy.localPort())).split(' ');
        const QString program = words.takeFirst();
        ProgramRun run = ProgramRun::of(NVH_BIN_DIR "/" + program, words, mPlace.path());
        QCOMPARE(run.status, 2);
        // The vehicle's screen shows what check-mic prints on standard output.
        if (program == "check-mic")
            std::swap(run.output, run.errors);
        QVERIFY2(run.errors.contains(reason), run.errors.constData());
        QCOMPARE(run.errors.count('\n'), 1);
        QCOMPARE(run.output, QByteArray());
    }

private:
    QTemporaryDir mPlace;
};

QTEST_GUILESS_MAIN(TestRefusals)
#include "tst_refusals.moc"
