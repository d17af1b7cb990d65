// The user's selections, the files of a run, the judgement of a spectrum table and the repair of a WAV header.

#include "nvh/engine/NVHWorker.h"
#include "tests/support/MachineTest.h"
#include "tests/support/Rows.h"

#include <HelixDash/services/LocationManager.h>

#include <QtEndian>

class TestResultFiles : public MachineTest {
    Q_OBJECT

private slots:
    void putsSelectionsIntoWords_data() {
        const auto row = columns<int, QString>("seconds", "words");
        row("-1", -1, "8192 left NVH");
        row("0", 0, "2048 sum NVH");
        row("1", 5, "4096 left VDT");
        row("2", 10, "8192 right SERVICE");
        row("3", 15, "16384 left NVH");
        row("4", 20, "8192 left NVH");
        row("5", 30, "8192 left NVH");
        row("6", 45, "8192 left NVH");
        row("7", 60, "8192 left NVH");
        row("8", -1, "8192 left NVH");
    }

    void putsSelectionsIntoWords() {
        const int selection = QByteArray(QTest::currentDataTag()).toInt();
        mWorker.setSliderDurationPosition(selection);
        mWorker.setFreqResolution(selection);
        mWorker.setMicChannel(selection);
        QTEST(mWorker.getDuration(), "seconds");
        // As clients call them that know the engine by name only.
        QString fftSize;
        QString channel;
        QVERIFY(QMetaObject::invokeMethod(&mWorker, "parseFftSize", Q_RETURN_ARG(QString, fftSize)));
        QVERIFY(QMetaObject::invokeMethod(&mWorker, "parseMicChannel", Q_RETURN_ARG(QString, channel)));
        QTEST(QStringList({fftSize, channel, appModeToStr(AppMode(selection))}).join(' '), "words");
    }

    void tagsTestTypes_data() {
        const auto row = columns<QString>("tag");
        const QString tags =
            "35 MPH=35MPH|42-43 Steady=42_43_STEADY|65 MPH=65MPH|75 MPH=75MPH|App Test=APPTEST|Brake Squeal=BSQUEAL|"
            "BSR=BSR|Clunk=CLUNK|Drive=DRIVE|Invalid=INVALID|Mic "
            "Test=MIC|Ramp=RAMP|Regen=Regen|Service=SERVICE|WOT=WOT|"
            "clunk=|=|Foo=";
        for (const QString& tag : tags.split('|'))
            row(qPrintable(tag.section('=', 0, 0)), tag.section('=', 1));
    }

    void tagsTestTypes() {
        QFETCH(QString, tag);
        const QString type = QTest::currentDataTag();
        QCOMPARE(testTypesVsTags.contains(type), !tag.isEmpty());
        mWorker.setTestType(type);
        mWorker.setClunkButtonState(false);
        QCOMPARE(mWorker.getTag(), tag);
        QCOMPARE(testTypesVsTags.value(type, "no row"), tag);
        mWorker.setClunkButtonState(true);
        QCOMPARE(mWorker.getTag(), tag + "_CLUNK");
    }

    void knowsItsFilesInOrder() {
        configure("nvh/config_file_name", "/tmp/moved both");
        QCOMPARE(cConfigFileNameSource.value(), cConfigFileNameDest.value());
        QStringList names;
        for (const ConfigStringValue& file : allFilenames)
            names.append(file.value());
        QCOMPARE(
            names.join(' '),
            "/tmp/recording.wav /tmp/ambient.wav /tmp/notes.wav /tmp/nvh-rpm.txt /tmp/nvh-results.txt /tmp/moved both "
            "/tmp/nvh-datavalues.txt /tmp/nvh-vehiclespeed.txt /tmp/nvh-motortorque.txt /tmp/nvh-wheelspeeds.txt "
            "/tmp/nvh-vdtStatic.txt /tmp/nvh-micCheck.txt");
    }

    void movesRecording_data() {
        const auto row = columns<int, QString, bool>("type", "target", "captured");
        row("ambient", 0, "/tmp/ambient.wav", true);
        row("notes", 1, "/tmp/notes.wav", true);
        row("test", 2, "/tmp/recording.wav", true);
        row("no capture", 2, "/tmp/recording.wav", false);
        row("invalid", 3, {}, true);
    }

    void movesRecording() {
        const auto [type, target, captured] = cells<int, QString, bool>();
        for (const char* file : {"/tmp/ambient.wav", "/tmp/notes.wav", "/tmp/recording.wav"})
            writeFile(file, "old");
        if (captured)
            writeFile(mMachine.kCapture, "new");
        mWorker.processRecording(RECORDING_TYPE(type));
        int replaced = 0;
        for (const char* file : {"/tmp/ambient.wav", "/tmp/notes.wav", "/tmp/recording.wav"})
            replaced += readFile(file) == (file == target ? "new" : "old") ? 0 : 1;
        QCOMPARE(replaced, captured ? 0 : 1);
        QCOMPARE(QFileInfo::exists(mMachine.kCapture), target.isEmpty());
        const QString second = target.isEmpty() ? QString("ERROR processRecording() invalid type ")
                                                : "INFO rename and header fix for  " + target + " ";
        QCOMPARE(mJournal->entries().mid(0, 2), QStringList({"INFO processRecording ", second}));
        QCOMPARE(mJournal->withPrefix("ERROR").isEmpty(), captured && !target.isEmpty());
    }

    void describesTestConditions() {
        setValue("HVAC_outsideTemp", -3.25);
        setValue("HVAC_insideTemp", 1234567.0);
        setValue("TPMS_pressureFL", 2.8999999);
        setValue("TPMS_pressureFR", 0.00001);
        setValue("TPMS_pressureRL", 3.0);
        setValue("TPMS_pressureRR", 2.123456789);
        LocationManager::instance()->setCurrentLocation({48.1371549, -115.7540421});
        mWorker.createDataValuesFile();
        QCOMPARE(
            QString::fromLocal8Bit(readFile("/tmp/nvh-datavalues.txt")),
            "--- Test Conditions--- \nOutside Temp: -3.25\nInside Temp: 1.23457e+06\nTPMS FL: 2.9\nTPMS FR: 1e-05\n"
            "TPMS RL: 3\nTPMS RR: 2.12346\nCurrent Latitude: 48.1372\nCurrent Longitude: -115.754\n");
        QCOMPARE(mJournal->entries(), QStringList("INFO Creating DataValues File "));

        {
            const FullDisk full;
            mWorker.createDataValuesFile();
        }
        QVERIFY(mJournal->has("ERROR Unable to Write to File /tmp/nvh-datavalues.txt   27 File too large "));
        configure("nvh/datavalues_file_name", "/tmp/none/file");
        mWorker.createDataValuesFile();
        QVERIFY(mJournal->has("ERROR Unable to Create /tmp/none/file "));
    }

    void namesPackages_data() {
        const auto row = columns<QVariant, QString, bool, QString>("trim", "type", "pass", "name");
        row("fail", QVariant(0), "Ramp", false, "TEST1VEHICLE00001-Base-v3.0_fail-CAR_RAMP-");
        row("plus", QVariant(1), "WOT", true, "TEST1VEHICLE00001-Base-v3.0_pass-CAR_WOT-");
        row("invalid trim", QVariant(), "Drive", true, "TEST1VEHICLE00001-Invalid-v3.0_pass-CAR_DRIVE-");
        row("unknown", QVariant(9), "Unheard", true, "TEST1VEHICLE00001-9-v3.0_pass-CAR_-");
    }

    void namesPackages() {
        const auto [trim, type, pass, name] = cells<QVariant, QString, bool, QString>();
        setValue("VAPI_trim", trim);
        writeFile("/tmp/notes.wav", "notes");
        mWorker.setSaveOnlyState(true);
        mWorker.setClunkButtonState(false);
        mWorker.setTestType(type);
        const qint64 before = QDateTime::currentSecsSinceEpoch();
        mWorker.renameFiles(pass);
        const qint64 seconds = mWorker.packageManager().packageName().section('-', -1).section('.', 0, 0).toLongLong();
        QCOMPARE(mWorker.packageManager().packageName(), QString("/tmp/%1%2.tgz").arg(name).arg(seconds));
        QVERIFY(seconds >= before && seconds <= before + 2);
        QVERIFY(mJournal->has("INFO package name:  " + mWorker.packageManager().packageName() + " "));
        QTRY_VERIFY(mWorker.packageManager().isIdle());
    }

    void usesNextFreeSecond() {
        for (const QString& content : {QString("first"), QString("second"), QString("third")}) {
            writeFile("/tmp/notes.wav", content.toUtf8());
            mWorker.renameFiles(true);
            QTRY_VERIFY(mWorker.packageManager().isIdle());
        }
        QByteArrayList packed;
        for (const QString& package : mWorker.packageManager().savedPackages())
            packed += archiveMember(package, "tmp/notes.wav");
        QCOMPARE(packed, QByteArrayList({"first", "second", "third"}));
    }

    void deletesRecordedFiles() {
        // One that cannot be deleted does not spare those after it.
        configure("nvh/results_file_name", "/proc/self/status");
        writeFile("/tmp/recording.wav", "new");
        writeFile("/tmp/nvh-micCheck.txt", "new");
        mWorker.deleteRecordedFiles();
        QCOMPARE(mJournal->entries(), QStringList("ERROR Unable to Delete  /proc/self/status "));
        QVERIFY(!QFileInfo::exists("/tmp/recording.wav") && !QFileInfo::exists("/tmp/nvh-micCheck.txt"));
    }

    void judgesTables_data() {
        const auto row = columns<QString, bool>("table", "pass");
        row("empty", "", true);
        row("above at the upper bound", "1000 0 5.1 0", false);
        row("above at the lower bound", "900 0 5.1 0", false);
        row("at the threshold", "1000 0 5.0 0", true);
        row("outside the band", "1000.5 0 5.1 0\n899.9 0 9 0", true);
        row("last line of many", "100 1 2 3\n\n950 9 1 9\r\n950\t1  7e0\n", false);
        row("missing level", "950 9", true);
        row("unreadable level", "950 0 loud 0", true);
        row("unreadable frequency", "x 0 9 0", true);
        row("blank before the line", " 950 0 9 0", true);
    }

    void judgesTables() {
        QFETCH(QString, table);
        QTEST(mWorker.resultsCheck(table.toLatin1(), 900, 1000, 5.0), "pass");
    }

    void repairsWavHeaders_data() {
        const auto row = columns<int, qint32, qint32>("size", "dataSize", "riffSize");
        row("header alone", 44, 0, 36);
        row("one frame", 60, 16, 52);
        row("short of a header", 10, -34, 2);
    }

    void repairsWavHeaders() {
        QFETCH(int, size);
        QString path = "/tmp/repaired.wav";
        const QByteArray before(size, 'x');
        writeFile(path, before);
        QVERIFY(mWorker.fixWavHeader(path));
        const QByteArray after = readFile(path);
        QTEST(qFromLittleEndian<qint32>(after.constData() + 40), "dataSize");
        QTEST(qFromLittleEndian<qint32>(after.constData() + 4), "riffSize");
        QCOMPARE(after.size(), qMax(size, 44));
        QCOMPARE(after.mid(44) + after.left(4), before.mid(44) + before.left(4));
        QCOMPARE(mJournal->entries(), QStringList());

        QString absent = "/tmp/none.wav";
        QVERIFY(!mWorker.fixWavHeader(absent));
        QCOMPARE(mJournal->entries(), QStringList("ERROR Error opening file!!   2 No such file or directory "));
    }

private:
    NVHWorker mWorker{AppModeNvh};
};

QTEST_GUILESS_MAIN(TestResultFiles)
#include "tst_resultfiles.moc"
