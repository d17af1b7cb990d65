// The microphone check and the analysis: programs of the vehicle, here scripts at their places.

#include "tests/nvh/engine/WatchedEngine.h"
#include "tests/support/MachineTest.h"
#include "tests/support/Rows.h"

#include <QElapsedTimer>

namespace {

const QString kReport = QStringLiteral("/tmp/nvh-micCheck.txt");

}  // namespace

class TestTargetPrograms : public MachineTest {
    Q_OBJECT

private slots:
    void checksMicrophones_data() {
        const auto row = columns<QByteArray, QString, QString, QString>("script", "testType", "feedback", "report");
        const QString answer = "check-mic 0.002 1.5 \n";
        row("verdict", "echo \"$1 $2 $3\"; echo Gerät >&2", "Mic Test",
            answer + "/tmp/recording.wav 0.002 1.5\nGerät\n", answer + "/tmp/recording.wav 0.002 1.5\nGerät\n");
        row("failing", "echo fail; exit 3", "Mic Test", answer + "fail\n", answer + "fail\n");
        row("silent", "true", "Mic Test", answer, answer);
        const QString error = "Error executing the mic-check utility\n";
        row("crash", "echo half; kill -9 $$", "Mic Test", error + "half\n", {});
        row("absent", {}, "Mic Test", error, {});
        row("another test", "echo pass", "mic test", {}, {});
    }

    void checksMicrophones() {
        const auto [script, testType, feedback, report] = cells<QByteArray, QString, QString, QString>();
        configure("nvh/micCheck_RmsThres", "0.002");
        QFile::remove("/usr/bin/check-mic");
        if (!script.isEmpty())
            installProgram("/usr/bin/check-mic", script);
        WatchedEngine worker(*mJournal, testType);
        // Twice: each check is a process of its own.
        for (int run = 0; run < 2; ++run) {
            QFile::remove(kReport);
            QVERIFY(recordOnce(worker));
            QTRY_VERIFY(feedback.isEmpty() || mJournal->has("> updateFeedbackLabel " + feedback));
            QTRY_VERIFY(childPrograms().isEmpty());
            QCOMPARE(mJournal->count("INFO Starting process: /usr/bin/check-mic [/tmp/recording.wav, 0.002, 1.5] "),
                     feedback.isEmpty() ? 0 : 1);
            QCOMPARE(mJournal->has("INFO " + report + " "), !report.isEmpty());
            QCOMPARE(QString::fromUtf8(readFile(kReport)), report);
            QCOMPARE(QFileInfo::exists(kReport), !report.isEmpty());
            QVERIFY(QFileInfo(cRecordingFilename.value()).size() > 20000);
        }
    }

    void packsReportThatIsUnderWay() {
        WatchedEngine worker(*mJournal, "Mic Test");
        installProgram("/usr/bin/check-mic", "while [ ! -e /tmp/recorder-may-end ]; do sleep 0.01; done; echo PASS");
        QVERIFY(recordOnce(worker));
        worker.resultsDone();
        QVERIFY(!mJournal->has("> packagingStart"));
        writeFile("/tmp/recorder-may-end", QByteArray());
        QVERIFY(waitFor("> fileSaved"));
        QCOMPARE(archiveMember(worker.package(), "tmp/nvh-micCheck.txt"), QByteArray("check-mic 0.001 1.5 \nPASS\n"));
    }

    void discardsReportThatIsUnderWay() {
        WatchedEngine worker(*mJournal, "Mic Test");
        installProgram("/usr/bin/check-mic", "sleep 0.1; echo PASS");
        QVERIFY(recordOnce(worker));
        worker.deleteRecordedFiles();
        QTRY_VERIFY(!childPrograms().contains("check-mic"));
        QVERIFY(!QFileInfo::exists(kReport));
        QCOMPARE(mJournal->withPrefix("> updateFeedbackLabel"), QStringList());
    }

    void analyses() {
        WatchedEngine worker(*mJournal);
        configure("nvh/rpm_file_name", "/tmp/rpm log.txt");
        installProgram("/usr/local/bin/whine", "printf '%s|' \"$@\" > /tmp/nvh-wheelspeeds.txt; echo result; exit 4");
        worker.setMicChannel(0);
        worker.setFreqResolution(3);
        worker.start();
        worker.startProcessingResults();
        QVERIFY(!worker.isRunning());
        QVERIFY(
            mJournal->has("INFO Starting process: /usr/local/bin/whine [/tmp/recording.wav, /tmp/rpm log.txt, sum, "
                          "16384] "));
        QVERIFY(waitFor("> finished"));
        QCOMPARE(readFile("/tmp/nvh-results.txt"), QByteArray("SkippedQ5"));
        QCOMPARE(readFile("/tmp/nvh-wheelspeeds.txt"), QByteArray("/tmp/recording.wav|/tmp/rpm log.txt|sum|16384|"));
    }

    void killsHangingAnalysis_data() {
        const auto row = columns<bool>("savedMeanwhile");
        row("by itself", false);
        row("saved meanwhile", true);
    }

    void killsHangingAnalysis() {
        QFETCH(bool, savedMeanwhile);
        configure("nvh/timeout_ms", 300);
        installProgram("/usr/local/bin/whine", "trap '' TERM; exec sleep 60");
        WatchedEngine worker(*mJournal);
        QElapsedTimer clock;
        clock.start();
        worker.startProcessingResults();
        if (savedMeanwhile)
            worker.resultsDone();
        mJournal->clear();
        int settled = 0;
        worker.whenSettled(&worker, [this, &settled] { settled = mJournal->has("> finished") ? 1 : -1; });
        QVERIFY(waitFor("ERROR An error occurred during results/whine process. "));
        QVERIFY2(clock.elapsed() >= 300 && clock.elapsed() < 2000, qPrintable(QString::number(clock.elapsed())));
        QTRY_COMPARE(settled, 1);
        QVERIFY(waitFor("> fileSaved"));
    }

    void reportsAbsentAnalysis() {
        WatchedEngine worker(*mJournal);
        QFile::remove("/usr/local/bin/whine");
        worker.startProcessingResults();
        bool settled = false;
        worker.whenSettled(&worker, [&settled] { settled = true; });
        QVERIFY(waitFor("ERROR An error occurred during results/whine process. "));
        QTRY_VERIFY(settled);
        QVERIFY(!mJournal->has("> finished"));
        QVERIFY(!QFileInfo::exists("/tmp/nvh-results.txt"));
    }

private:
    bool recordOnce(NVHWorker& worker) {
        worker.start();
        if (!recorderWrites())
            return false;
        mJournal->clear();
        worker.stop();
        return waitFor("INFO rename and header fix for  /tmp/recording.wav ");
    }
};

QTEST_GUILESS_MAIN(TestTargetPrograms)
#include "tst_targetprograms.moc"
