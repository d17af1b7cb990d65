// What a recorder leaves and whose it is: nothing, an old capture, another recorder's files, another user's.

#include "tests/nvh/engine/WatchedEngine.h"
#include "tests/support/MachineTest.h"
#include "tests/support/Rows.h"

#include <QDir>
#include <QProcess>
#include <QtEndian>

#include <csignal>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const QString kRecording = QStringLiteral("/tmp/recording.wav");
const QString kSetAside = QStringLiteral("/tmp/capture/test.rescue/test.wav");

// A WAV file as a recorder that was killed leaves it, and its header's two sizes.
QByteArray unfinishedSound() {
    return QByteArray(
               "RIFF\xff\xff\xff\x7fWAVEfmt \x10\0\0\0\1\0\x08\0\x80\xbb\0\0\0\xb8\x0b\0\x10\0\x10\0"
               "data\xdb\xff\xff\x7f",
               44) +
           QByteArray(1600, 's');
}
bool headerIsWhole(const QByteArray& sound) {
    return sound.size() > 44 && qFromLittleEndian<quint32>(sound.constData() + 4) == quint32(sound.size() - 8) &&
           qFromLittleEndian<quint32>(sound.constData() + 40) == quint32(sound.size() - 44);
}

// The programs of a host that is dead have become this process's.
bool nothingRuns() {
    while (::waitpid(-1, nullptr, WNOHANG) > 0) {
    }
    return childPrograms().isEmpty();
}

}  // namespace

class TestCaptures : public MachineTest {
    Q_OBJECT

private slots:
    void initTestCase() { QCOMPARE(::prctl(PR_SET_CHILD_SUBREAPER, 1), 0); }

    void packsNoOlderRecording_data() {
        const auto row = columns<QByteArray, QString, QString>("mode", "recordingFile", "why");
        row("recorder wrote nothing", QByteArray("nothing"), kRecording, "the recorder wrote nothing");
        row("no device", QByteArray("refuse"), kRecording, "the recorder wrote nothing");
        row("no recorder", QByteArray("absent"), kRecording, "/usr/bin/arecord could not be started");
        row("cannot be moved", QByteArray(), "/tmp/none/recording.wav",
            "/tmp/capture/test.wav cannot be moved to /tmp/none/recording.wav: No such file or directory");
    }

    void packsNoOlderRecording() {
        const auto [mode, recordingFile, why] = cells<QByteArray, QString, QString>();
        mMachine.reset(mode);
        if (mode == "absent")
            QFile::remove("/usr/bin/arecord");
        configure("nvh/recordingFilename", recordingFile);
        writeFile(kRecording, "an older one");
        WatchedEngine worker(*mJournal);
        worker.start();
        QVERIFY(mode.isEmpty() ? recorderWrites()
                               : QTest::qWaitFor([this] { return !childPrograms().isEmpty(); }) || mode == "absent");
        if (mode.isEmpty() || mode == "nothing")
            worker.stop();
        bool settled = false;
        worker.whenSettled(this, [&settled] { settled = true; });
        QTRY_VERIFY(settled);
        QVERIFY(!worker.captureOutcome().noFile.isEmpty());
        worker.resultsDone();
        QVERIFY(waitFor("> fileSaved"));
        QVERIFY2(mJournal->has("> updateFeedbackLabel No recording\n" + why),
                 qPrintable(mJournal->entries().join('\n')));
        QVERIFY(mJournal->has("ERROR No recording\n" + why + " "));
        QVERIFY(mJournal->has("> finished"));
        QVERIFY(!archiveMembers(worker.package()).contains("tmp/recording.wav"));
        QCOMPARE(readFile(kRecording), QByteArray("an older one"));
    }

    void killsDeafRecorder() {
        mMachine.reset("deaf");
        WatchedEngine worker(*mJournal);
        worker.start();
        QVERIFY(recorderWrites());
        worker.stop();
        worker.resultsDone();
        QVERIFY(waitFor("> fileSaved"));
        QVERIFY(headerIsWhole(archiveMember(worker.package(), "tmp/recording.wav")));
        QCOMPARE(worker.captureOutcome().how, CaptureOutcome::How::Killed);
        QVERIFY(
            mJournal->has("> updateFeedbackLabel Error with arecord\nThe recorder did not end and was killed.\n"
                          "What it recorded is kept."));
        QCOMPARE(childPrograms(), QStringList());
    }

    void setsAsideWhatNobodyFiled() {
        writeFile(mMachine.kCapture, unfinishedSound());
        WatchedEngine worker(*mJournal);
        const QString note = "A recording that was never filed is kept in\n" + kSetAside;
        for (int run = 0; run < 2; ++run) {
            worker.start();
            QVERIFY(recorderWrites());
            worker.stop();
            QVERIFY(waitFor("INFO processRecording "));
        }
        QVERIFY(headerIsWhole(readFile(kSetAside)));
        QCOMPARE(mJournal->count("> updateFeedbackLabel " + note), 1);
        QCOMPARE(worker.setAsideNote(), QString());
        QCOMPARE(mJournal->withPrefix("ERROR").size(), 1);
        // A header without sound is nothing to keep.
        writeFile(mMachine.kCapture, unfinishedSound().left(44));
        worker.start();
        QVERIFY(!QFileInfo::exists("/tmp/capture/test.rescue-2"));
    }

    void endsRecorderOfDeadHost_data() {
        const auto row = columns<QByteArray>("mode");
        row("told to end", QByteArray());
        row("deaf", QByteArray("deaf"));
    }

    void endsRecorderOfDeadHost() {
        const auto [mode] = cells<QByteArray>();
        mMachine.reset(mode);
        QProcess host;
        host.start(NVH_BIN_DIR "/nvh-tool", {"--config", PrivateMachine::kConfig, "record", "--type", "WOT", "--save"});
        QVERIFY(QTest::qWaitFor(hasSound, 10000));
        ::kill(pid_t(host.processId()), SIGKILL);
        QVERIFY(host.waitForFinished());
        QTRY_VERIFY(nothingRuns());
        QCOMPARE(headerIsWhole(readFile(mMachine.kCapture)), mode.isEmpty());
        qputenv("NVH_RECORDER", QByteArray());
        WatchedEngine worker(*mJournal);
        worker.start();
        QVERIFY(waitFor("> startUpdating"));
        QVERIFY(headerIsWhole(readFile(kSetAside)));
    }

    void forgetsClipThatWasDiscarded() {
        mMachine.reset("slow");
        const QString notes = "/dev/shm/nvh-test-notes.wav";
        configure("nvh/notesRecordingFilename", notes);
        WatchedEngine worker(*mJournal);
        worker.startAudioRecording();
        QVERIFY(recorderWrites());
        worker.stopAudioRecording();
        worker.processRecording(RecordingNotes);
        worker.deleteRecordedFiles();
        writeFile("/tmp/recorder-may-end", QByteArray());
        QVERIFY(waitFor("INFO arecord: Aborted by signal Terminated...\n "));
        worker.start();
        QVERIFY(recorderWrites());
        worker.stop();
        QTRY_VERIFY(QFileInfo(kRecording).size() > 20000);
        QVERIFY(!QFileInfo::exists(notes));
    }

    void saysWhyClipFailed() {
        mMachine.reset("full");
        WatchedEngine worker(*mJournal);
        worker.startAudioRecording();
        QVERIFY(waitFor("> updateFeedbackLabel Error with arecord\nwrite error: No space left on device\n"));
        QVERIFY(!QFileInfo::exists(kRecording));
        // What it had recorded is the clip when its time is over.
        worker.stopAudioRecording();
        worker.processRecording(RecordingNotes);
        QVERIFY(QFileInfo("/tmp/notes.wav").size() > 20000);
    }

    void keepsItsFilesToItself_data() {
        const auto row = columns<QString>("end");
        for (const char* end : {"saved", "discarded", "gone"})
            row(end, QString(end));
    }

    void keepsItsFilesToItself() {
        const auto [end] = cells<QString>();
        auto first = std::make_unique<WatchedEngine>(*mJournal);
        first->start();
        QVERIFY(recorderWrites());
        // By another path to the same file.
        QVERIFY(QFile::link("/tmp/capture", "/tmp/capture/again"));
        configure("audio/capturing_file_name", "/tmp/capture/again/test.wav");
        Journal journal;
        WatchedEngine second(journal);
        second.start();
        const auto refused = [&journal] {
            return !journal
                        .withPrefix(
                            "> updateFeedbackLabel Error with arecord\n/tmp/capture/again/test.wav (held by "
                            "process " +
                            QString::number(::getpid()))
                        .isEmpty();
        };
        QTRY_VERIFY(refused());
        QVERIFY(!second.isRunning());
        QVERIFY(journal.has("> startUpdating") && journal.has("> endRecording"));
        QVERIFY(!journal.has("INFO Creating DataValues File "));
        second.processRecording(RecordingNotes);
        second.resultsDone();
        second.deleteRecordedFiles();
        QTRY_VERIFY(second.packageManager().isIdle());
        QVERIFY(hasSound());

        first->stop();
        QTRY_VERIFY(QFileInfo::exists(kRecording));
        if (end == "saved")
            first->resultsDone();
        else if (end == "discarded")
            first->deleteRecordedFiles();
        else
            first.reset();
        QTRY_VERIFY(!first || first->packageManager().isIdle());
        journal.clear();
        second.start();
        QVERIFY(QTest::qWaitFor([&journal] { return journal.has("> startUpdating"); }));
        QTRY_VERIFY(hasSound());
        QVERIFY(!refused());
    }

    void leavesAloneWhatIsNotItsOwn_data() {
        const auto row = columns<QString, QString, QString>("file", "kind", "refusal");
        row("recording is a link", kRecording, "link", "Too many levels of symbolic links");
        row("recording is a FIFO", kRecording, "FIFO", "Operation not permitted");
        row("recording is another user's", kRecording, "foreign", "Permission denied");
        row("capture is a directory", PrivateMachine::kCapture, "directory", "Is a directory");
        row("log is a link", "/tmp/nvh-rpm.txt", "link", "");
        row("log is a FIFO", "/tmp/nvh-rpm.txt", "FIFO", "");
        row("log has a second name", "/tmp/nvh-rpm.txt", "second name", "");
        row("conditions are a link", "/tmp/nvh-datavalues.txt", "link", "");
        row("notes are another user's", "/tmp/notes.wav", "foreign", "");
        row("notes are a FIFO", "/tmp/notes.wav", "FIFO", "");
    }

    void leavesAloneWhatIsNotItsOwn() {
        const auto [file, kind, refusal] = cells<QString, QString, QString>();
        const std::string name = file.toStdString();
        writeFile("/tmp/precious.txt", "precious");
        if (kind == "link")
            QCOMPARE(::symlink("/tmp/precious.txt", name.c_str()), 0);
        else if (kind == "second name")
            QCOMPARE(::link("/tmp/precious.txt", name.c_str()), 0);
        else if (kind == "FIFO")
            QCOMPARE(::mkfifo(name.c_str(), 0600), 0);
        else if (kind == "directory")
            QCOMPARE(::mkdir(name.c_str(), 0700), 0);
        else
            writeFile(file, "foreign");
        if (kind == "foreign" && ::chown(name.c_str(), 1, 1) != 0)
            QSKIP("needs more than one user");
        WatchedEngine worker(*mJournal);
        worker.start();
        if (refusal.isEmpty()) {
            QVERIFY(recorderWrites());
            setValue("VAPI_motorRPM", 1000.0);
            worker.stop();
            QVERIFY(waitFor("INFO processRecording "));
            if (file == "/tmp/notes.wav") {
                QTRY_VERIFY(QFileInfo::exists(kRecording));
                worker.startAudioRecording();
                QVERIFY(recorderWrites());
                worker.stopAudioRecording();
                worker.processRecording(RecordingNotes);
                QTRY_COMPARE(mJournal->withPrefix("ERROR /tmp/notes.wav (owner ").size(), 1);
            }
            worker.resultsDone();
            QVERIFY(waitFor("> fileSaved"));
            QCOMPARE(archiveMembers(worker.package()).contains(file.mid(1)), kind == "second name");
        } else {
            QTRY_COMPARE(mJournal->withPrefix("> updateFeedbackLabel Error with arecord\n" + file + " (owner ").size(),
                         1);
            QVERIFY(mJournal->withPrefix("ERROR Error with arecord")[0].contains(refusal));
            QVERIFY(childPrograms().isEmpty());
        }
        worker.deleteRecordedFiles();
        QCOMPARE(readFile("/tmp/precious.txt"), QByteArray("precious"));
        struct stat status {};
        QCOMPARE(::lstat(name.c_str(), &status) == 0, kind != "second name");
    }

    void letsNobodyElseRead() {
        WatchedEngine worker(*mJournal);
        worker.start();
        QVERIFY(recorderWrites());
        for (const QString& process : QDir("/proc").entryList({"[0-9]*"})) {
            if (readFile("/proc/" + process + "/stat").contains("(arecord) ")) {
                for (const QFileInfo& open : QDir("/proc/" + process + "/fd").entryInfoList(QDir::System | QDir::Files))
                    QVERIFY2(!open.symLinkTarget().contains("nvh-"), qPrintable(open.symLinkTarget()));
            }
        }
        worker.stop();
        QVERIFY(waitFor("INFO processRecording "));
        for (const char* file : {"/tmp/recording.wav", "/tmp/nvh-rpm.txt", "/tmp/nvh-datavalues.txt"})
            QCOMPARE(int(QFile::permissions(file)) & 0x77, 0);
        worker.resultsDone();
        QVERIFY(waitFor("> fileSaved"));
        QCOMPARE(int(QFile::permissions(worker.package())) & 0x77, 0);
    }

    void filesRecordingOfAnotherScreen_data() {
        const auto row = columns<QString, bool, QString>("type", "clunk", "tag");
        row("plain", "35 MPH", false, "-CAR_35MPH-");
        row("torque reversal", "WOT", true, "-CAR_WOT_CLUNK-");
    }

    void filesRecordingOfAnotherScreen() {
        const auto [type, clunk, tag] = cells<QString, bool, QString>();
        auto recorded = std::make_unique<WatchedEngine>(*mJournal, type);
        recorded->setClunkButtonState(clunk);
        recorded->start();
        QVERIFY(recorderWrites());
        recorded->stop();
        QVERIFY(waitFor("INFO processRecording "));
        QTRY_VERIFY(QFileInfo::exists(kRecording));
        recorded.reset();
        NVHWorker fresh(AppModeVdt);
        fresh.setSaveOnlyState(true);
        fresh.resultsDone();
        QTRY_VERIFY(fresh.packageManager().isIdle());
        const QString package = fresh.packageManager().packageName();
        QVERIFY2(package.contains(tag), qPrintable(package));
        QVERIFY(archiveMembers(package).contains("tmp/recording.wav"));
        QCOMPARE(QDir("/tmp").entryList({"recording.wav*"}), QStringList());
        QVERIFY(!archiveMembers(package).join(' ').contains("recording.wav."));
    }
};

QTEST_GUILESS_MAIN(TestCaptures)
#include "tst_captures.moc"
