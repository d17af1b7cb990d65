// nvh-tool as a user runs it: exit statuses, what it prints and says, what it leaves.

#include "tests/support/MachineTest.h"
#include "tests/support/Rows.h"
#include "tests/support/ScriptedServer.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>

#include <csignal>
#include <functional>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace {

const QByteArray kStored = "HTTP/1.1 200 OK\r\n\r\nhttp://store/one.tgz";
const QByteArray kPosted = "HTTP/1.1 201 Created\r\n\r\n{\"VDT Feedback\": \"Well driven\"}";

// The plain header as a recorder writes it first, and a file that is finished: four bytes of sound, one more chunk.
const QByteArray kUnfinished(
    "RIFF\xff\xff\xff\x7fWAVEfmt \x10\0\0\0\1\0\1\0\x80\xbb\0\0\0\x77\1\0\2\0\x10\0data\0\0\0\0", 44);
const QByteArray kFinished =
    QByteArray(kUnfinished).replace(4, 4, QByteArray("\x34\0\0\0", 4)).replace(40, 4, QByteArray("\4\0\0\0", 4)) +
    QByteArray("abcdLIST\4\0\0\0wxyz", 16);

constexpr const char* kWaiting = "/tmp/recorder-waiting";
const QByteArray kWaits = ": > /tmp/recorder-waiting; exec sleep 60";

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
        const auto row = columns<int, QString, QString, int>("signal", "fate", "output", "packages");
        row("saved", SIGINT, "--save", "^/tmp/TEST1VEHICLE00001-Invalid-v3.0_pass-CAR_WOT-\\d+\\.tgz\n$", 1);
        row("uploaded", SIGTERM, "--upload", "^Well\\\\x1bdriven\n$", 0);
        row("discarded", SIGHUP, "--discard", "^$", 0);
    }

    void endsRunAtInterrupt() {
        const auto [signal, fate, output] = cells<int, QString, QString>();
        mServer->answer({kStored, QByteArray(kPosted).replace("Well ", "Well\\u001b")});
        QCOMPARE(record({fate}, signal), 0);
        QVERIFY2(QRegularExpression(output).match(mOutput).hasMatch(), qPrintable(mOutput));
        QTEST(savedPackages(), "packages");
        QVERIFY(!QFileInfo::exists("/tmp/recording.wav") && !QFileInfo::exists("/tmp/nvh-rpm.txt"));
    }

    void endsOtherCommandsAtInterrupt_data() {
        const auto row = columns<int, QStringList, int>("signal", "arguments", "packages");
        row("analysis", SIGINT, QStringList("analyse"), 1);
        row("analysis, terminated", SIGTERM, QStringList("analyse"), 1);
        row("upload", SIGTERM, QStringList{"packages", "--upload"}, 1);
        row("upload, hung up", SIGHUP, QStringList{"packages", "--upload"}, 1);
    }

    void endsOtherCommandsAtInterrupt() {
        const auto [signal, arguments] = cells<int, QStringList>();
        installProgram("/usr/local/bin/whine", kWaits);
        replaceProgram("curl", kWaits);
        writeFile("/tmp/recording.wav", kFinished);
        writeFile("/tmp/TEST1VEHICLE00001-1.tgz", "first");
        QCOMPARE(run(arguments, {}, signal, [] { return QFileInfo::exists(kWaiting); }), 1);
        QCOMPARE(mErrors.last(), "nvh-tool: interrupted");
        QTEST(savedPackages(), "packages");
    }

    void packsWhatDyingRecorderLeft_data() {
        const auto row = columns<QString, QString>("trouble", "reason");
        row("full disk", "full", "the recorder failed: write error: No space left on device");
        row("crash", "crash", "the recorder failed: /usr/bin/arecord crashed");
        row("deaf", "deaf", "the recorder failed: /usr/bin/arecord did not end and was killed");
        row("nothing recorded", "", "No recording: ");
    }

    void packsWhatDyingRecorderLeft() {
        const auto [trouble, reason] = cells<QString, QString>();
        qputenv("NVH_RECORDER", trouble.toLatin1());
        if (trouble == "deaf")
            installProgram("/usr/bin/arecord", "trap '' TERM; cp /tmp/recorder-sound " +
                                                   QByteArray(PrivateMachine::kCapture) + "; exec sleep 60");
        else if (trouble.isEmpty())
            installProgram("/usr/bin/arecord", "trap 'exit 1' TERM; while :; do sleep 0.01; done");
        writeFile("/tmp/recorder-sound", kUnfinished + "abcd");
        QCOMPARE(run({"record", "--type", "WOT", "--save", "--seconds", "1"}), 1);
        QCOMPARE(mErrors.filter("nvh-tool: " + reason).size(), 1);
        QCOMPARE(savedPackages(), 1);
        QCOMPARE(!archiveMember(mOutput.trimmed(), "tmp/recording.wav").isEmpty(), !trouble.isEmpty());
    }

    void saysWhyRunFailed_data() {
        const auto row = columns<QString, QString, QByteArrayList, QString>("trouble", "fate", "answers", "reason");
        const QString kept = "; the package is kept: /tmp/TEST1VEHICLE00001-\\S+\\.tgz";
        const QString rescued = " could not be started; the files are kept in /tmp/TEST1VEHICLE00001-\\S+\\.rescue";
        row("no device", "refuse", "--save", {}, "the recorder failed: audio open error: No such file or directory");
        row("no recorder", "arecord", "--save", {}, "the recorder failed: /usr/bin/arecord could not be started");
        row("no tar", "tar", "--save", {}, "tar" + rescued);
        row("tar complains", "complaint", "--save", {},
            "tar failed: tar: no room; the files are kept in /tmp/TEST1VEHICLE00001-\\S+\\.rescue");
        row("no gzip", "gzip", "--save", {}, "gzip" + rescued);
        row("no curl", "curl", "--upload", {}, "curl could not be started" + kept);
        row("no server", "server", "--upload", {}, "upload failed: no answer from http://\\S+/vdt/upload" + kept);
        row("no URL", "", "--upload", QByteArrayList{"HTTP/1.1 200 OK\r\n\r\n"},
            "upload failed: http://\\S+/vdt/upload answered \"HTTP/1.1 200 OK\"" + kept);
        row("interim answer", "", "--upload",
            QByteArrayList{"HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 503 Busy\x1b[31m\r\n\r\n"},
            "upload failed: http://\\S+/vdt/upload answered \"HTTP/1.1 503 Busy\\\\x1b\\[31m\"" + kept);
        row("not registered", "", "--upload", QByteArrayList{kStored, "HTTP/1.1 200 OK\r\n\r\n"},
            "registering the package failed: http://\\S+/vdt/sonvara_files answered \"HTTP/1.1 200 OK\"" + kept);
    }

    void saysWhyRunFailed() {
        const auto [trouble, fate, answers, reason] = cells<QString, QString, QByteArrayList, QString>();
        if (trouble == "arecord")
            QFile::remove("/usr/bin/arecord");
        else if (trouble == "server")
            mServer->refuse();
        else if (trouble == "complaint")
            replaceProgram("tar", "echo 'tar: no room' >&2; exit 2");
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
        QCOMPARE(savedPackages(), reason.contains("package is kept") || reason.startsWith("tar") ? 1 : 0);
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
        QVERIFY(QDir().mkdir("/tmp/TEST1VEHICLE00001-3.tgz"));
        mServer->answer({kStored, kPosted});
        QCOMPARE(run({"packages", "--upload"}), 1);
        QVERIFY2(mErrors.last().contains("passed over"), qPrintable(mErrors.last()));
        QVERIFY(!QFileInfo::exists("/tmp/TEST1VEHICLE00001-2.tgz") && QDir().rmdir("/tmp/TEST1VEHICLE00001-3.tgz"));
        writeFile("/tmp/TEST1VEHICLE00001-4.tgz", "fourth");
        mServer->answer({kStored, kPosted});
        QCOMPARE(run({"packages", "--upload"}), 0);
        QCOMPARE(run({"packages"}), 0);
        QCOMPARE(mErrors, QStringList("nvh-tool: 0 saved packages"));
    }

    void analyses_data() {
        const auto row = columns<QByteArray, QString, int, QString>("script", "output", "status", "lastWords");
        const QByteArray table = "printf '100\\t1 -40 900\\n'; echo speed >&2; ";
        row("done", table, "100\t1 -40 900\n", 0, "packed: /tmp/TEST1VEHICLE00001-Invalid-v3.0_pass-CAR_65MPH-");
        row("failed", table + "exit 3", "100\t1 -40 900\n", 1, "the analysis program failed with exit status 3");
        row("crashed", "kill -9 $$", "", 1, "the analysis program crashed");
        row("too slow", "exec sleep 60", "", 1, "the analysis program was killed after 300 ms");
        row("absent", {}, "", 1, "the analysis program could not be started; nothing is packed");
    }

    void analyses() {
        const auto [script, output, status, lastWords] = cells<QByteArray, QString, int, QString>();
        QFile::remove("/usr/local/bin/whine");
        if (!script.isEmpty())
            installProgram("/usr/local/bin/whine", "echo \"$*\" > /tmp/nvh-wheelspeeds.txt; " + script);
        configure("nvh/timeout_ms", script.contains("sleep") ? 300 : 30000);
        writeFile("/tmp/recording.wav", kFinished);
        QCOMPARE(run({"analyse", "--type", "65 MPH", "--channel", "right", "--fft", "16384"}), status);
        QCOMPARE(mOutput, output);
        QCOMPARE(mErrors.filter("nvh-tool: " + lastWords).size(), 1);
        QCOMPARE(mErrors.contains("nvh-tool: speed"), script.contains("speed"));
        QCOMPARE(savedPackages(), script.isEmpty() ? 0 : 1);
        if (!script.isEmpty())
            QCOMPARE(archiveMember(mErrors.last().section("packed: ", 1), "tmp/nvh-wheelspeeds.txt"),
                     QByteArray("/tmp/recording.wav /tmp/nvh-rpm.txt right 16384\n"));
    }

    void refusesToAnalyseWithoutRecording() {
        installProgram("/usr/local/bin/whine", "exit 0");
        QCOMPARE(run({"analyse"}), 1);
        QCOMPARE(mErrors, QStringList("nvh-tool: no recording: /tmp/recording.wav: No such file or directory"));
        writeFile("/tmp/recording.wav", "no sound");
        QCOMPARE(run({"analyse"}), 1);
        QCOMPARE(mErrors, QStringList("nvh-tool: /tmp/recording.wav is no WAV file"));
        QVERIFY(QFileInfo::exists("/tmp/recording.wav") && savedPackages() == 0);
    }

    void judges_data() {
        const auto row = columns<QByteArray, QString, int, QString>("table", "threshold", "status", "said");
        row("above", "1000 0 5.1 0\n", "5.0", 1, "");
        row("at the threshold", "1000 0 5.1 0\n", "5.1", 0, "");
        row("with a heading", "Hz order dB RPM\n1000 0 -1 0", "0", 0, "");
        row("empty", {}, "-1", 0, "-: the table is empty");
        row("prose", "\nno such\nfile\n", "5", 2, "-: line 2: no table");
        row("prose, failing", "no such file", "-1", 2, "-: line 1: no table");
        row("shifted", " 1000 0 5.1 0\n", "5", 2, "-: line 1: no table");
        row("cut", "900 0 1 0\n1000 0 5\n\n", "5.1", 2, "-: line 2: cut off");
        row("cut behind a failure", "900 0 9 0\n1000 0 5", "5.1", 1, "");
    }

    void judges() {
        const auto [table, threshold, status, said] = cells<QByteArray, QString, int, QString>();
        QCOMPARE(run({"judge", "-", "--band", "0:1000", "--threshold=" + threshold}, table), status);
        QCOMPARE(mOutput, QStringList({"PASS\n", "FAIL\n", ""})[status]);
        QCOMPARE(mErrors.size(), said.isEmpty() ? 0 : 1);
        QVERIFY2(said.isEmpty() || mErrors[0].startsWith("nvh-tool: " + said), qPrintable(mErrors.join('\n')));
    }

    void repairsWavFiles_data() {
        const auto row = columns<QByteArray, qint64, QByteArray, QString>("header", "size", "sizes", "reason");
        row("cut off", kUnfinished, qint64(48), QByteArray("\x28\0\0\0\4\0\0\0", 8), "");
        row("chunk behind the data", kFinished, qint64(60), QByteArray("\x34\0\0\0\4\0\0\0", 8), "");
        row("cut off behind 2 GiB", kUnfinished, (qint64(1) << 31) + 10, QByteArray("\2\0\0\x80\xde\xff\xff\x7f", 8),
            "");
        row("prose", "no sound, but forty-four bytes and some more of it", qint64(50), "oundmore",
            "no WAV file with the plain header of 44 bytes");
    }

    void repairsWavFiles() {
        const auto [header, size, sizes, reason] = cells<QByteArray, qint64, QByteArray, QString>();
        writeFile("/tmp/a.wav", header);
        QVERIFY(QFile::resize("/tmp/a.wav", size));
        QCOMPARE(run({"repair-wav", "/tmp/a.wav"}), reason.isEmpty() ? 0 : 1);
        QCOMPARE(mOutput, reason.isEmpty() ? "/tmp/a.wav\n" : "");
        QCOMPARE(mErrors.join('\n'), reason.isEmpty() ? "" : "nvh-tool: /tmp/a.wav: " + reason);
        QFile file("/tmp/a.wav");
        QVERIFY(file.open(QIODevice::ReadOnly) && file.size() == size);
        const QByteArray after = file.read(kUnfinished.size());
        QCOMPARE(after.mid(4, 4) + after.mid(40), sizes);
    }

    void repairsNoPipe() {
        const QByteArray name = "/tmp/recorder-\x1b[31m";
        QCOMPARE(::mkfifo(name.constData(), 0600), 0);
        writeFile("/tmp/a.wav", kUnfinished);
        QCOMPARE(run({"repair-wav", name, "/tmp/a.wav"}), 1);
        QCOMPARE(mErrors, QStringList("nvh-tool: /tmp/recorder-\\x1b[31m: no plain file"));
        QCOMPARE(mOutput, "/tmp/a.wav\n");
    }

    void refusesUnusableArguments_data() {
        const auto row = columns<QString>("reason");
        const QString refusals =
            "=no command is named|fly=no command \"fly\"|packages all=unexpected \"all\"|repair-wav=no file is named|"
            "record --save=--type: \"\" is none of 35 MPH, 42-43 Steady|record --type wot --save=--type: \"wot\"|"
            "record --type WOT=one of --save, --upload and --discard|"
            "record --type WOT --save --discard=one of --save, --upload and --discard|"
            "record --type WOT --save --seconds 0=\"0\"|record --type WOT --save --seconds 1.5=\"1.5\"|"
            "record --type WOT --save --seconds 701=\"701\"|record --type WOT --save now=unexpected \"now\"|"
            "record --type WOT --save --fast=Unknown option 'fast'|record --type WOT --save --vin A/B=--vin: \"A/B\"|"
            "record --type WOT --save --trace /tmp/none.csv=--trace: /tmp/none.csv|"
            "analyse --type wot=--type: \"wot\" is none of 35 MPH|analyse --fft 1024=--fft: \"1024\"|analyse --channel "
            "1=--channel: \"1\"|"
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
    // The tool's exit status; -1 if it has not ended after 20 s, or not as a program should, or left a child behind. It
    // gets the signal when it is ready for that.
    int run(const QStringList& arguments, const QByteArray& input = {}, int signal = 0,
            const std::function<bool()>& ready = {}) {
        QProcess tool;
        tool.start(NVH_BIN_DIR "/nvh-tool",
                   QStringList{"--config", PrivateMachine::kConfig, "--vin", PrivateMachine::kVin} + arguments);
        tool.write(input);
        tool.closeWriteChannel();
        const auto ended = [&tool] { return tool.state() == QProcess::NotRunning; };
        if (ready && QTest::qWaitFor([&] { return ended() || ready(); }, 20000) && !ended())
            ::kill(pid_t(tool.processId()), signal);
        const bool inTime = QTest::qWaitFor(ended, 20000);
        mOutput = QString::fromUtf8(tool.readAllStandardOutput());
        mErrors = QString::fromUtf8(tool.readAllStandardError()).split('\n', Qt::SkipEmptyParts);
        const bool alone = childPrograms().isEmpty();
        // What was left behind must not fail the next run too.
        while (::waitpid(-1, nullptr, WNOHANG) > 0) {
        }
        return inTime && tool.exitStatus() == QProcess::NormalExit && alone ? tool.exitCode() : -1;
    }
    // A run that is interrupted as soon as there is something to keep.
    int record(const QStringList& arguments, int signal = SIGINT) {
        return run(QStringList{"record", "--type", "WOT"} + arguments, {}, signal, hasSound);
    }
    int savedPackages() const { return int(QDir("/tmp").entryList({"TEST1VEHICLE00001*.tgz"}).size()); }

    std::unique_ptr<ScriptedServer> mServer;
    QString mOutput;
    QStringList mErrors;
};

QTEST_GUILESS_MAIN(TestNvhTool)
#include "tst_nvhtool.moc"
