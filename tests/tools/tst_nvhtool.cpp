// nvh-tool as a user runs it: exit statuses, what it prints and says, what it leaves.

#include "tests/support/MachineTest.h"
#include "tests/support/Rows.h"
#include "tests/support/ScriptedServer.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>

#include <csignal>
#include <sys/prctl.h>

namespace {

const QByteArray kStored = "HTTP/1.1 200 OK\r\n\r\nhttp://store/one.tgz";
const QByteArray kPosted = "HTTP/1.1 201 Created\r\n\r\n{\"VDT Feedback\": \"Well driven\"}";

}  // namespace

class TestNvhTool : public MachineTest {
    Q_OBJECT

private slots:
    // What the tool would leave behind becomes a child of this process.
    void initTestCase() { QCOMPARE(::prctl(PR_SET_CHILD_SUBREAPER, 1), 0); }

    void init() {
        MachineTest::init();
        mServer = std::make_unique<ScriptedServer>();
        configure("nvh/mes_url", mServer->url("/vdt/upload"));
        configure("nvh/sonvara_api", mServer->url("/vdt/sonvara_files"));
    }

    void savesTimedRun() {
        writeFile("/tmp/recorder-trace.csv", "t_s,VAPI_motorRPM\n0,100.0\n0.4,200.5\n0.6,300.0\n");
        QCOMPARE(run({"record", "--type", "65 MPH", "--seconds", "1", "--clunk", "--save", "--set", "VAPI_trim=3",
                      "--trace", "/tmp/recorder-trace.csv"}),
                 0);
        const QString package = mOutput.trimmed();
        QVERIFY2(QRegularExpression("^/tmp/TEST1VEHICLE00001-Premium-v3.0_pass-CAR_65MPH_CLUNK-\\d+\\.tgz$")
                     .match(package)
                     .hasMatch(),
                 qPrintable(package));
        QCOMPARE(mErrors.filter(QRegularExpression("^nvh-tool: recorded 1\\.[0-9] s$")).size(), 1);
        QVERIFY(archiveMember(package, "tmp/recording.wav").size() > 20000);
        const QString log = archiveMember(package, "tmp/nvh-rpm.txt");
        QVERIFY2(QRegularExpression("(^|\n)\\d+, 200\n\\d+, 300\n$").match(log).hasMatch(), qPrintable(log));
        QCOMPARE(run({"packages"}), 0);
        QCOMPARE(mOutput, package + "\n");
    }

    void endsRunAtInterrupt_data() {
        columns<QString, QString, int>("fate", "output", "packages");
        row("saved", "--save", "^/tmp/TEST1VEHICLE00001-Invalid-v3.0_pass-CAR_WOT-\\d+\\.tgz\n$", 1);
        row("uploaded", "--upload", "^Well driven\n$", 0);
        row("discarded", "--discard", "^$", 0);
    }

    void endsRunAtInterrupt() {
        QFETCH(QString, fate);
        QFETCH(QString, output);
        mServer->answer({kStored, kPosted});
        QCOMPARE(record({fate}), 0);
        QVERIFY2(QRegularExpression(output).match(mOutput).hasMatch(), qPrintable(mOutput));
        QTEST(savedPackages(), "packages");
        QVERIFY(!QFileInfo::exists("/tmp/recording.wav") && !QFileInfo::exists("/tmp/nvh-rpm.txt"));
    }

    void saysWhyRunFailed_data() {
        columns<QString, QString, QByteArrayList, QString>("trouble", "fate", "answers", "reason");
        const QString kept = "; the package is kept: /tmp/TEST1VEHICLE00001-\\S+\\.tgz";
        const QString rescued = " could not be started; the files are kept in /tmp/TEST1VEHICLE00001-\\S+\\.rescue";
        row("no device", "refuse", "--save", QByteArrayList(),
            "the recorder failed: audio open error: No such file or directory");
        row("no recorder", "arecord", "--save", QByteArrayList(),
            "the recorder failed: /usr/bin/arecord could not be started");
        row("no tar", "tar", "--save", QByteArrayList(), "tar" + rescued);
        row("no gzip", "gzip", "--save", QByteArrayList(), "gzip" + rescued);
        row("no curl", "curl", "--upload", QByteArrayList(), "curl could not be started" + kept);
        row("no server", "server", "--upload", QByteArrayList(),
            "upload failed: no answer from http://\\S+/vdt/upload" + kept);
        row("no URL", "", "--upload", QByteArrayList{"HTTP/1.1 200 OK\r\n\r\n"},
            "upload failed: http://\\S+/vdt/upload answered \"HTTP/1.1 200 OK\"" + kept);
        row("not registered", "", "--upload", QByteArrayList{kStored, "HTTP/1.1 200 OK\r\n\r\n"},
            "registering the package failed: http://\\S+/vdt/sonvara_files answered \"HTTP/1.1 200 OK\"" + kept);
    }

    void saysWhyRunFailed() {
        QFETCH(QString, trouble);
        QFETCH(QString, fate);
        QFETCH(QByteArrayList, answers);
        QFETCH(QString, reason);
        if (trouble == "arecord")
            QFile::remove("/usr/bin/arecord");
        else if (trouble == "server")
            mServer->refuse();
        else if (trouble == "refuse")
            qputenv("NVH_RECORDER", "refuse");
        else if (!trouble.isEmpty())
            hideProgram(trouble);
        mServer->answer(answers);
        QCOMPARE(record({fate}), 1);
        QCOMPARE(mOutput, QString());
        const QStringList reasons =
            mErrors.filter(QRegularExpression("^nvh-tool: (?!recording \"|recorded |packing$|packing and uploading$)"));
        QCOMPARE(reasons.size(), 1);
        QVERIFY2(QRegularExpression("^nvh-tool: " + reason + "$").match(reasons[0]).hasMatch(), qPrintable(reasons[0]));
        QCOMPARE(savedPackages(), reason.contains("package is kept") || trouble == "tar" ? 1 : 0);
    }

    void uploadsSavedPackages() {
        writeFile("/tmp/TEST1VEHICLE00001-2.tgz", "second");
        writeFile("/tmp/TEST1VEHICLE00001-1.tgz", "first");
        mServer->answer({kStored, kPosted, kStored});
        QCOMPARE(run({"packages", "--upload"}), 1);
        QCOMPARE(mErrors.size(), 3);
        QVERIFY2(mErrors[2].contains("registering the package failed: no answer") && mErrors[2].endsWith("left: 1"),
                 qPrintable(mErrors[2]));
        QVERIFY(mServer->requests()[0].contains("first") && mServer->requests()[2].contains("second"));
        mServer->answer({kStored, kPosted});
        QCOMPARE(run({"packages", "--upload"}), 0);
        QCOMPARE(run({"packages"}), 0);
        QCOMPARE(mErrors, QStringList("nvh-tool: 0 saved packages"));
    }

    void analyses_data() {
        columns<QByteArray, int>("script", "status");
        row("done", QByteArray("echo \"$*\" > /tmp/nvh-wheelspeeds.txt"), 0);
        row("killed", QByteArray("kill -9 $$"), 0);
        row("absent", QByteArray(), 1);
    }

    void analyses() {
        QFETCH(QByteArray, script);
        QFETCH(int, status);
        QFile::remove("/usr/local/bin/whine");
        if (!script.isEmpty())
            installProgram("/usr/local/bin/whine", script);
        QCOMPARE(run({"analyse", "--channel", "right", "--fft", "16384"}), status);
        QCOMPARE(savedPackages(), 1 - status);
        if (script.startsWith("echo"))
            QCOMPARE(archiveMember(mOutput.trimmed(), "tmp/nvh-wheelspeeds.txt"),
                     QByteArray("/tmp/recording.wav /tmp/nvh-rpm.txt right 16384\n"));
    }

    void judges() {
        writeFile("/tmp/recorder-table", "1000 0 5.1 0\n");
        QCOMPARE(run({"judge", "/tmp/recorder-table", "--band", "900:1000", "--threshold", "5.0"}), 1);
        QCOMPARE(mOutput, "FAIL\n");
        QCOMPARE(run({"judge", "-", "--band", "900:999", "--threshold=-1"}, "1000 0 5.1 0\n"), 0);
        QCOMPARE(mOutput, "PASS\n");
    }

    void repairsWavFiles() {
        const QByteArray header(
            "RIFF\xff\xff\xff\x7fWAVEfmt \x10\0\0\0\1\0\1\0\x80\xbb\0\0\0\x77\1\0\2\0\x10\0data\0\0\0\0", 44);
        writeFile("/tmp/a.wav", header + "abcd");
        writeFile("/tmp/b.wav", "no sound, but forty-four bytes and some more of it");
        QCOMPARE(run({"repair-wav", "/tmp/b.wav", "/tmp/a.wav"}), 1);
        QCOMPARE(mOutput, "/tmp/a.wav\n");
        QCOMPARE(mErrors, QStringList("nvh-tool: /tmp/b.wav: no WAV file with the plain header of 44 bytes"));
        QCOMPARE(readFile("/tmp/a.wav").mid(4, 4) + readFile("/tmp/a.wav").mid(40),
                 QByteArray("\x28\0\0\0\4\0\0\0abcd", 12));
        QVERIFY(readFile("/tmp/b.wav").startsWith("no sound"));
        QCOMPARE(run({"repair-wav", "/tmp/a.wav"}), 0);
    }

    void refusesUnusableArguments_data() {
        columns<QString>("reason");
        const QString refusals =
            "=no command is named|fly=no command \"fly\"|packages all=unexpected \"all\"|repair-wav=no file is named|"
            "record --save=--type: \"\" is none of 35 MPH, 42-43 Steady|record --type wot --save=--type: \"wot\"|"
            "record --type WOT=one of --save, --upload and --discard|"
            "record --type WOT --save --discard=one of --save, --upload and --discard|"
            "record --type WOT --save --seconds 0=\"0\"|record --type WOT --save --seconds 1.5=\"1.5\"|"
            "record --type WOT --save --seconds 701=\"701\"|record --type WOT --save now=unexpected \"now\"|"
            "record --type WOT --save --fast=Unknown option 'fast'|record --type WOT --save --vin A/B=--vin: \"A/B\"|"
            "record --type WOT --save --trace /tmp/none.csv=--trace: /tmp/none.csv|"
            "analyse --fft 1024=--fft: \"1024\"|analyse --channel 1=--channel: \"1\"|"
            "judge --band 1:2 --threshold 1=one table is needed|judge - --band 2:1 --threshold 1=--band: \"2:1\"|"
            "judge - --band 1:2 --threshold loud=\"loud\"|judge /tmp/none --band 1:2 --threshold 1=/tmp/none: No such";
        for (const QString& refusal : refusals.split('|'))
            row(qPrintable(refusal.section('=', 0, 0)), refusal.section('=', 1));
    }

    void refusesUnusableArguments() {
        QFETCH(QString, reason);
        const QStringList arguments = QString(QTest::currentDataTag()).split(' ', Qt::SkipEmptyParts);
        QCOMPARE(run(arguments), 2);
        QCOMPARE(mOutput, QString());
        QCOMPARE(mErrors.size(), 1);
        QVERIFY2(mErrors[0].startsWith("nvh-tool: ") && mErrors[0].contains(reason), qPrintable(mErrors[0]));
        QVERIFY(!QFileInfo::exists("/tmp/recorder-arguments"));
    }

private:
    // The tool's exit status; -1 if it has not ended after 20 s, or not as a program should, or left a child behind.
    int run(const QStringList& arguments, const QByteArray& input = {}, bool interrupt = false) {
        QProcess tool;
        tool.start(NVH_BIN_DIR "/nvh-tool",
                   QStringList{"--config", PrivateMachine::kConfig, "--vin", PrivateMachine::kVin} + arguments);
        tool.write(input);
        tool.closeWriteChannel();
        const auto ended = [&tool] { return tool.state() == QProcess::NotRunning; };
        if (interrupt && QTest::qWaitFor([&] { return ended() || hasSound(); }, 20000) && !ended())
            ::kill(pid_t(tool.processId()), SIGINT);
        const bool inTime = QTest::qWaitFor(ended, 20000);
        mOutput = QString::fromUtf8(tool.readAllStandardOutput());
        mErrors = QString::fromUtf8(tool.readAllStandardError()).split('\n', Qt::SkipEmptyParts);
        return inTime && tool.exitStatus() == QProcess::NormalExit && childPrograms().isEmpty() ? tool.exitCode() : -1;
    }
    // A run that is interrupted as soon as there is something to keep.
    int record(const QStringList& arguments) {
        return run(QStringList{"record", "--type", "WOT"} + arguments, {}, true);
    }
    int savedPackages() const { return int(QDir("/tmp").entryList({"TEST1VEHICLE00001*.tgz"}).size()); }

    std::unique_ptr<ScriptedServer> mServer;
    QString mOutput;
    QStringList mErrors;
};

QTEST_GUILESS_MAIN(TestNvhTool)
#include "tst_nvhtool.moc"
