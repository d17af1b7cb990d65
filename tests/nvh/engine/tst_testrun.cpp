// Test runs from start() to the package, and all that may go wrong on the way.

#include "nvh/capture/NvhValueLogger.h"
#include "tests/nvh/engine/WatchedEngine.h"
#include "tests/support/MachineTest.h"
#include "tests/support/Rows.h"
#include "tests/support/ScriptedServer.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QtEndian>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

const QString kRecording = QStringLiteral("/tmp/recording.wav");
// Can have a logger hang in the middle of its work, as on a disk that does not answer.
class Application : public QCoreApplication {
public:
    using QCoreApplication::QCoreApplication;

    static void hangLoggerOf(const QString& value) {
        mHang = true;
        setValue(value.toLatin1().constData(), 2000.0);
        QTRY_VERIFY(!mHang);
    }

    // Runs on the receiver's thread.
    bool notify(QObject* receiver, QEvent* event) override {
        if (qobject_cast<NvhValueLogger*>(receiver) && event->type() == QEvent::MetaCall && mHang.exchange(false))
            std::this_thread::sleep_for(std::chrono::minutes(1));
        return QCoreApplication::notify(receiver, event);
    }

private:
    static inline std::atomic<bool> mHang = false;
};

const QString kVehicleStopped = QStringLiteral("INFO Stopping Recording - VEHICLE STOPPED ");

}  // namespace

class TestTestRun : public MachineTest {
    Q_OBJECT

private slots:
    void runsInOrder() {
        configure("nvh/LogVerbose", true);
        setValue("VAPI_trim", 3);
        WatchedEngine worker(*mJournal);
        worker.start();
        QVERIFY(recorderWrites());
        setValue("VAPI_motorRPM", 2301.4);
        setValue("VAPI_motorRPM", 2301.9);
        setValue("VAPI_signedVehicleSpeed", -3.7);
        QCOMPARE(worker.getMotorRPM(), 2301);
        worker.stop();
        QVERIFY(waitFor("INFO rename and header fix for  /tmp/recording.wav "));
        worker.resultsDone();
        QVERIFY(waitFor("> fileSaved"));

        const QString package = worker.package();
        const QStringList files = {"/tmp/recording.wav",      "/tmp/nvh-rpm.txt",          "/tmp/nvh-results.txt",
                                   "/tmp/nvh-datavalues.txt", "/tmp/nvh-vehiclespeed.txt", "/tmp/nvh-motortorque.txt"};
        const QString expected =
            "INFO start |> updateFeedbackLabel |INFO initValueLoggerThreads |INFO Creating DataValues File |"
            "INFO actuallyStartRecording |INFO VehicleSpeedThread Running:  true |INFO MotorTorqueThread Running:  "
            "true |"
            "INFO MotorRPMThread Running:  true |INFO startAudioRecording |INFO Starting process: /usr/bin/arecord "
            "[-Dapp_in_diagnostic, -c8, -r48000, -fS16_LE, -N, /tmp/capture/test.wav] |> startUpdating|"
            "INFO stop |> recordingStopped|> endRecording|INFO NVHWorker::stop All threads exited properly |"
            "INFO arecord: Aborted by signal Terminated...\n |INFO processRecording |"
            "INFO rename and header fix for  /tmp/recording.wav |"
            "INFO Results done |INFO package name:  %1 |INFO Missing /tmp/ambient.wav |INFO Missing /tmp/notes.wav |"
            "INFO Missing /tmp/nvh-config.txt |INFO Missing /tmp/nvh-wheelspeeds.txt |"
            "INFO Missing /tmp/nvh-vdtStatic.txt |INFO Missing /tmp/nvh-micCheck.txt |INFO startPackageManagerProcess |"
            "> packagingStart|INFO Saving to %1 |INFO tarcmd:  [tar -cvf -, %2] |> finished|INFO Skipping Upload..! |"
            "> fileSaved";
        QCOMPARE(mJournal->entries(), expected.arg(package, files.join(", ")).split('|'));
        QCOMPARE(mJournal->elsewhere().filter(QRegularExpression("^INFO Logger Thread Started! ID:  \\d+ $")).size(),
                 3);
        QCOMPARE(mJournal->elsewhere().count("INFO stopLogging  Stopping DataValue Logging.... "), 3);

        QCOMPARE(readFile("/tmp/recorder-arguments"),
                 QByteArray("-Dapp_in_diagnostic -c8 -r48000 -fS16_LE -N ") + mMachine.kCapture);
        QCOMPARE("/" + archiveMembers(package).join(",/"), files.join(","));
        for (const QString& file : files)
            QVERIFY2(!QFileInfo::exists(file), qPrintable(file));
        QCOMPARE(archiveMember(package, "tmp/nvh-results.txt"), QByteArray("SkippedQ5"));
        QCOMPARE(QString(archiveMember(package, "tmp/nvh-rpm.txt")).remove(QRegularExpression("\\d+(?=, )")),
                 ", 2301\n, 2301\n");
        QVERIFY(archiveMember(package, "tmp/nvh-vehiclespeed.txt").endsWith(", -3\n"));
        QCOMPARE(archiveMember(package, "tmp/nvh-motortorque.txt"), QByteArray());
        const QByteArray recording = archiveMember(package, "tmp/recording.wav");
        QCOMPARE(qFromLittleEndian<quint32>(recording.constData() + 40), quint32(recording.size() - 44));
        QVERIFY(!QFileInfo::exists(mMachine.kCapture));
    }

    void refusesSecondStartAndIdleStop() {
        WatchedEngine worker(*mJournal);
        worker.stop();
        QCOMPARE(mJournal->entries(), QStringList("ERROR Not currently running "));
        worker.start();
        QVERIFY(recorderWrites());
        mJournal->clear();
        worker.start();
        QCOMPARE(mJournal->entries(), QStringList({"> updateFeedbackLabel ", "ERROR Already running "}));
        QCOMPARE(childPrograms().count("arecord"), 1);
        QVERIFY(worker.isRunning());
        worker.stop();
        QCOMPARE(mJournal->count("> recordingStopped"), 1);
        QVERIFY(waitFor("INFO processRecording "));
    }

    void stopsAtStandstill() {
        setValue("VAPI_signedVehicleSpeed", 12.0);
        WatchedEngine worker(*mJournal, "Brake Squeal");
        worker.start();
        QVERIFY(recorderWrites());
        QElapsedTimer clock;
        clock.start();
        setValue("VAPI_signedVehicleSpeed", 0.0);
        setValue("VAPI_signedVehicleSpeed", 5.0);
        setValue("VAPI_signedVehicleSpeed", -0.5);
        QCOMPARE(mJournal->count(kVehicleStopped), 1);
        QVERIFY(waitFor("> endRecording"));
        QVERIFY2(clock.elapsed() >= 1990 && clock.elapsed() < 2900, qPrintable(QString::number(clock.elapsed())));
        QVERIFY(!worker.isRunning());
    }

    void keepsRunningUnlessBrakeSquealsToStandstill_data() {
        const auto row = columns<QString, QString, double>("firstType", "type", "speed");
        row("rolling", "Brake Squeal", "Brake Squeal", 0.1);
        row("another type", "65 MPH", "brake squeal", 0.0);
        row("another type after a brake squeal", "Brake Squeal", "65 MPH", 0.0);
    }

    void keepsRunningUnlessBrakeSquealsToStandstill() {
        const auto [firstType, type, speed] = cells<QString, QString, double>();
        setValue("VAPI_signedVehicleSpeed", 12.0);
        WatchedEngine worker(*mJournal, firstType);
        worker.start();
        QVERIFY(recorderWrites());
        // Stopped by hand within the two seconds: the timer of this run must not end the next one.
        if (firstType == "Brake Squeal")
            setValue("VAPI_signedVehicleSpeed", 0.0);
        worker.stop();
        worker.setTestType(type);
        setValue("VAPI_signedVehicleSpeed", 12.0);
        mJournal->clear();
        worker.start();
        QVERIFY(waitFor("> startUpdating"));
        setValue("VAPI_signedVehicleSpeed", speed);
        QVERIFY(!QTest::qWaitFor([this] { return mJournal->has(kVehicleStopped) || mJournal->has("> endRecording"); },
                                 2200));
        QVERIFY(worker.isRunning());
    }

    void terminatesHangingLogger_data() {
        const auto row = columns<QString, QString, QString>("value", "log", "thread");
        row("speed", "VAPI_signedVehicleSpeed", "/tmp/nvh-vehiclespeed.txt", "mVehicleSpeedLoggerThread");
        row("torque", "VAPI_torqueCmd", "/tmp/nvh-motortorque.txt", "mMotorTorqueLoggerThread");
        row("rpm", "VAPI_motorRPM", "/tmp/nvh-rpm.txt", "mMotorRPMLoggerThread");
    }

    void terminatesHangingLogger() {
        const auto [value, log, thread] = cells<QString, QString, QString>();
        writeFile("/tmp/notes.wav", "said before");
        WatchedEngine worker(*mJournal);
        const int threads = threadCount();
        worker.start();
        QVERIFY(recorderWrites());
        QElapsedTimer clock;
        Application::hangLoggerOf(value);
        clock.start();
        worker.stop();
        QVERIFY2(clock.elapsed() >= 500 && clock.elapsed() < 2100, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(mJournal->withPrefix("ERROR"),
                 QStringList("ERROR " + thread + " did't exit on time! Terminating... "));
        QVERIFY(mJournal->has("INFO Discarding Files "));
        for (const QString& file : {log, QString("/tmp/notes.wav"), QString("/tmp/nvh-datavalues.txt")})
            QVERIFY2(!QFileInfo::exists(file), qPrintable(file));
        QVERIFY(waitFor("INFO processRecording "));
        QTRY_VERIFY(threadCount() <= threads);

        mJournal->clear();
        worker.start();
        QVERIFY(recorderWrites());
        worker.stop();
        QCOMPARE(mJournal->withPrefix("ERROR"), QStringList());
        QVERIFY(QFileInfo::exists(log));
    }

    void endsEverythingWhenDestroyed_data() {
        const auto row = columns<QString>("stage");
        for (const char* stage : {"recording", "recording with a hanging logger", "recorder ending", "microphone check",
                                  "analysis", "packaging", "upload", "post"})
            row(stage, stage);
    }

    void endsEverythingWhenDestroyed() {
        const auto [stage] = cells<QString>();
        mMachine.reset(stage == "recorder ending" ? "slow" : "");
        installProgram("/usr/bin/check-mic", "exec sleep 60");
        installProgram("/usr/local/bin/whine", "exec sleep 60");
        if (stage == "packaging")
            replaceProgram("gzip", "head -c 100; exec sleep 60");
        ScriptedServer server;
        server.answer({"HTTP/1.1 200 OK\r\n\r\nhttp://store/one.tgz"});
        if (stage == "upload")
            server.hold();
        configure("nvh/mes_url", server.url("/vdt/upload"));
        configure("nvh/sonvara_api", server.url("/vdt/sonvara_files"));

        const int threads = threadCount();
        auto worker = std::make_unique<WatchedEngine>(*mJournal, stage == "microphone check" ? "Mic Test" : "65 MPH");
        worker->setSaveOnlyState(stage == "packaging");
        connect(&worker->packageManager(), &NvhPackageManager::metadataUploadStart, &server, &ScriptedServer::hold);
        worker->start();
        QVERIFY(recorderWrites());
        if (!stage.startsWith("recording")) {
            worker->stop();
            QVERIFY(stage == "recorder ending" || waitFor("INFO rename and header fix for  /tmp/recording.wav "));
            stage == "analysis" ? worker->startProcessingResults() : worker->resultsDone();
        }
        const QString package = worker->package();
        if (stage == "packaging")
            QTRY_COMPARE(QFileInfo(package + ".part").size(), 100);
        else if (stage == "upload")
            QTRY_COMPARE(server.requests().size(), 1);
        else if (stage == "post")
            QTRY_COMPARE(server.requests().size(), 2);
        QVERIFY(!childPrograms().isEmpty());
        mJournal->clear();
        QElapsedTimer clock;
        clock.start();
        if (stage == "recording with a hanging logger")
            Application::hangLoggerOf("VAPI_motorRPM");
        clock.start();
        worker.reset();
        QVERIFY2(clock.elapsed() < 2600, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(childPrograms(), QStringList());
        QTRY_VERIFY(threadCount() <= threads);
        QCOMPARE(mJournal->withPrefix("> "), QStringList());
        // An archive is there only if it is complete.
        QCOMPARE(QFileInfo::exists(package), stage == "upload" || stage == "post");
        QVERIFY(!QFileInfo::exists(package + ".part"));
        QCOMPARE(QFileInfo::exists("/tmp/nvh-datavalues.txt"), !QFileInfo::exists(package));
    }

    void reportsFailingRecorder_data() {
        const auto row = columns<QByteArray, QString, QString>("mode", "output", "recording");
        row("no device", QByteArray("refuse"), "audio open error: No such file or directory\n", "old");
        row("disk full", QByteArray("full"), "write error: No space left on device\n", "new");
        row("crash", QByteArray("crash"), "", "new");
        row("absent", QByteArray("absent"), "", "old");
    }

    void reportsFailingRecorder() {
        const auto [mode, output, recording] = cells<QByteArray, QString, QString>();
        mMachine.reset(mode);
        writeFile(kRecording, "old");
        writeFile(mMachine.kCapture, "left by a run long ago");
        if (mode == "absent")
            QVERIFY(QFile::remove("/usr/bin/arecord"));
        WatchedEngine worker(*mJournal);
        worker.start();
        QVERIFY(waitFor("> updateFeedbackLabel Error with arecord\n" + output));
        QVERIFY(mJournal->has("ERROR Error with arecord " + output + " "));
        QTRY_VERIFY(childPrograms().isEmpty());
        QVERIFY(!worker.isRunning());
        QCOMPARE(mJournal->count("> endRecording"), 1);
        QTRY_COMPARE(readFile(kRecording) == "old", recording == "old");
        QCOMPARE(mJournal->withPrefix("INFO processRecording").isEmpty(), recording == "old");

        mMachine.reset();
        mJournal->clear();
        worker.start();
        QVERIFY(recorderWrites());
        worker.stop();
        QVERIFY(waitFor("INFO processRecording "));
        QCOMPARE(mJournal->withPrefix("ERROR"), QStringList());
    }

    void waitsForEndingRecorder_data() {
        const auto row = columns<QString, QByteArray>("request", "ending");
        row("start", "start", QByteArray());
        row("start, then a crash", "start", QByteArray("crash"));
        row("results", "results", QByteArray());
        row("results, then a crash", "results", QByteArray("crash"));
        row("discard", "discard", QByteArray());
    }

    void waitsForEndingRecorder() {
        const auto [request, ending] = cells<QString, QByteArray>();
        mMachine.reset("slow");
        WatchedEngine worker(*mJournal);
        worker.start();
        QVERIFY(recorderWrites());
        worker.stop();
        QTRY_VERIFY(QFileInfo::exists("/tmp/recorder-told"));
        worker.stopAudioRecording();
        mJournal->clear();
        if (request == "start")
            worker.start();
        else if (request == "results")
            worker.resultsDone();
        else
            worker.deleteRecordedFiles();
        QCOMPARE(childPrograms().count("arecord"), 1);
        QCOMPARE(mJournal->withPrefix("INFO Results done"), QStringList());
        QVERIFY(!mJournal->has("> startUpdating"));
        // The logs would begin before the sound.
        QVERIFY(!mJournal->has("INFO initValueLoggerThreads "));
        writeFile("/tmp/recorder-may-end", ending);

        if (request == "start") {
            QVERIFY(waitFor("> startUpdating"));
            QVERIFY(worker.isRunning());
            QVERIFY(!mJournal->has("> endRecording"));
            QVERIFY(recorderWrites());
            QVERIFY(QFileInfo(kRecording).size() > 20000);
            QCOMPARE(childPrograms().count("arecord"), 1);
        } else if (request == "results") {
            QVERIFY(waitFor("> fileSaved"));
            QVERIFY(archiveMember(worker.package(), "tmp/recording.wav").size() > 20000);
            QCOMPARE(mJournal->count("> finished"), 1);
        } else {
            QVERIFY(waitFor("INFO arecord: Aborted by signal Terminated...\n "));
            QVERIFY(!QFileInfo::exists(kRecording) && !QFileInfo::exists(mMachine.kCapture));
        }
    }

    void keepsClipAndTestRecordingApart_data() {
        const auto row = columns<QString>("clip");
        row("on one file system", "/tmp/notes.wav");
        row("on another one", "/dev/shm/nvh-test-notes.wav");
    }

    // A clip is moved while its recorder still completes it.
    void keepsClipAndTestRecordingApart() {
        const auto [clip] = cells<QString>();
        mMachine.reset("slow");
        configure("nvh/notesRecordingFilename", clip);
        writeFile(kRecording, "recorded before");
        WatchedEngine worker(*mJournal);
        worker.startAudioRecording();
        QVERIFY(recorderWrites());
        worker.stopAudioRecording();
        worker.processRecording(RecordingNotes);
        writeFile("/tmp/recorder-may-end", QByteArray());
        QVERIFY(waitFor("INFO arecord: Aborted by signal Terminated...\n "));
        const QByteArray sound = readFile(clip);
        QFile::remove(clip);
        QVERIFY(sound.size() > 20000);
        QCOMPARE(qFromLittleEndian<quint32>(sound.constData() + 40), quint32(sound.size() - 44));
        QCOMPARE(readFile(kRecording), QByteArray("recorded before"));
        QVERIFY(!QFileInfo::exists(mMachine.kCapture));
    }

    void packsLastRunBeforeNextOneStarts_data() {
        const auto row = columns<QString>("testType");
        row("while its recorder ends", "65 MPH");
        row("while its microphones are checked", "Mic Test");
    }

    void packsLastRunBeforeNextOneStarts() {
        const auto [testType] = cells<QString>();
        const bool micTest = testType == "Mic Test";
        mMachine.reset(micTest ? "" : "slow");
        installProgram("/usr/bin/check-mic", "while [ ! -e /tmp/recorder-may-end ]; do sleep 0.01; done; echo PASS");
        WatchedEngine worker(*mJournal, testType);
        worker.start();
        QVERIFY(recorderWrites());
        setValue("VAPI_motorRPM", 1000.0);
        worker.stop();
        if (micTest)
            QTRY_COMPARE(childPrograms(), QStringList("check-mic"));
        worker.resultsDone();
        worker.start();
        writeFile("/tmp/recorder-may-end", QByteArray());
        QVERIFY(waitFor("> fileSaved"));
        const QString package = worker.package();
        QVERIFY(archiveMember(package, "tmp/recording.wav").size() > 20000);
        QVERIFY(archiveMember(package, "tmp/nvh-rpm.txt").endsWith(", 1000\n"));
        QCOMPARE(archiveMembers(package).contains("tmp/nvh-micCheck.txt"), micTest);

        QVERIFY(recorderWrites());
        setValue("VAPI_motorRPM", 2000.0);
        worker.stop();
        QVERIFY(readFile("/tmp/nvh-rpm.txt").endsWith(", 2000\n"));
    }

    void startsOnceAfterPackaging() {
        replaceProgram("gzip", "cat; while [ ! -e /tmp/recorder-may-end ]; do sleep 0.01; done");
        writeFile(kRecording, "packed now");
        WatchedEngine worker(*mJournal);
        worker.resultsDone();
        worker.start();
        worker.stop();
        worker.start();
        QVERIFY(!mJournal->has("> startUpdating"));
        writeFile("/tmp/recorder-may-end", QByteArray());
        QVERIFY(waitFor("> startUpdating"));
        QVERIFY(recorderWrites());
        QCOMPARE(mJournal->count("INFO initValueLoggerThreads "), 1);
        QCOMPARE(childPrograms().count("arecord"), 1);
    }
};

int main(int argc, char** argv) {
    const Application application(argc, argv);
    TestTestRun test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_testrun.moc"
