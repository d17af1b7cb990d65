// The user's selections, the files of a run, the judgement of a spectrum table and the repair of a WAV header.

#include "nvh/engine/NVHWorker.h"
#include "tests/support/MachineTest.h"

#include <HelixDash/services/LocationManager.h>

#include <QtEndian>

class TestResultFiles : public MachineTest {
    Q_OBJECT

private slots:
    void putsSelectionsIntoWords_data() {
        QTest::addColumn<int>("seconds");
        QTest::addColumn<QString>("words");
        QTest::newRow("-1") << -1 << "8192 left NVH";
        QTest::newRow("0") << 0 << "2048 sum NVH";
        QTest::newRow("1") << 5 << "4096 left VDT";
        QTest::newRow("2") << 10 << "8192 right SERVICE";
        QTest::newRow("3") << 15 << "16384 left NVH";
        QTest::newRow("4") << 20 << "8192 left NVH";
        QTest::newRow("5") << 30 << "8192 left NVH";
        QTest::newRow("6") << 45 << "8192 left NVH";
        QTest::newRow("7") << 60 << "8192 left NVH";
        QTest::newRow("8") << -1 << "8192 left NVH";
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
        QTest::addColumn<QString>("tag");
        const QStringList rows = {"35 MPH=35MPH",
                                  "42-43 Steady=42_43_STEADY",
                                  "65 MPH=65MPH",
                                  "75 MPH=75MPH",
                                  "App Test=APPTEST",
                                  "Brake Squeal=BSQUEAL",
                                  "BSR=BSR",
                                  "Clunk=CLUNK",
                                  "Drive=DRIVE",
                                  "Invalid=INVALID",
                                  "Mic Test=MIC",
                                  "Ramp=RAMP",
                                  "Regen=Regen",
                                  "Service=SERVICE",
                                  "WOT=WOT",
                                  "clunk=",
                                  "=",
                                  "Foo="};
        for (const QString& row : rows)
            QTest::newRow(qPrintable(row.section('=', 0, 0))) << row.section('=', 1);
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
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("target");
        QTest::addColumn<bool>("captured");
        QTest::newRow("ambient") << 0 << "/tmp/ambient.wav" << true;
        QTest::newRow("notes") << 1 << "/tmp/notes.wav" << true;
        QTest::newRow("test") << 2 << "/tmp/recording.wav" << true;
        QTest::newRow("no capture") << 2 << "/tmp/recording.wav" << false;
        QTest::newRow("invalid") << 3 << QString() << true;
    }

    void movesRecording() {
        QFETCH(int, type);
        QFETCH(QString, target);
        QFETCH(bool, captured);
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
        if (target.isEmpty())
            QCOMPARE(mJournal->entries(),
                     QStringList({"INFO processRecording ", "ERROR processRecording() invalid type "}));
        else
            QCOMPARE(mJournal->entries().mid(0, 2),
                     QStringList({"INFO processRecording ", "INFO rename and header fix for  " + target + " "}));
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

        configure("nvh/datavalues_file_name", "/dev/full");
        mWorker.createDataValuesFile();
        QVERIFY(mJournal->has("ERROR Unable to Write to File /dev/full   28 No space left on device "));
        configure("nvh/datavalues_file_name", "/tmp/none/file");
        mWorker.createDataValuesFile();
        QVERIFY(mJournal->has("ERROR Unable to Create /tmp/none/file "));
    }

    void namesPackages_data() {
        QTest::addColumn<QVariant>("trim");
        QTest::addColumn<QString>("type");
        QTest::addColumn<bool>("pass");
        QTest::addColumn<QString>("name");
        QTest::newRow("fail") << QVariant(0) << "Ramp" << false << "TEST1VEHICLE00001-Base-v3.0_fail-CAR_RAMP-";
        QTest::newRow("plus") << QVariant(1) << "WOT" << true << "TEST1VEHICLE00001-Base-v3.0_pass-CAR_WOT-";
        QTest::newRow("invalid trim") << QVariant() << "Drive" << true
                                      << "TEST1VEHICLE00001-Invalid-v3.0_pass-CAR_DRIVE-";
        QTest::newRow("unknown") << QVariant(9) << "Unheard" << true << "TEST1VEHICLE00001-9-v3.0_pass-CAR_-";
    }

    void namesPackages() {
        QFETCH(QVariant, trim);
        QFETCH(QString, type);
        QFETCH(bool, pass);
        QFETCH(QString, name);
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
        mWorker.setTestType("WOT");
        QStringList packages;
        for (const char* content : {"first", "second", "third"}) {
            writeFile("/tmp/notes.wav", content);
            mWorker.renameFiles(true);
            packages.append(mWorker.packageManager().packageName());
            QTRY_VERIFY(mWorker.packageManager().isIdle());
        }
        QCOMPARE(archiveMember(packages[0], "tmp/notes.wav"), QByteArray("first"));
        QCOMPARE(archiveMember(packages[1], "tmp/notes.wav"), QByteArray("second"));
        QCOMPARE(archiveMember(packages[2], "tmp/notes.wav"), QByteArray("third"));
    }

    void deletesRecordedFiles() {
        // One that cannot be deleted does not spare those after it.
        configure("nvh/results_file_name", "/proc/self/status");
        writeFile("/tmp/recording.wav", "new");
        writeFile("/tmp/nvh-micCheck.txt", "new");
        mWorker.deleteRecordedFiles();
        QCOMPARE(mJournal->entries(), QStringList("ERROR Unable to Delete  /proc/self/status "));
        QVERIFY(!QFileInfo::exists("/tmp/recording.wav"));
        QVERIFY(!QFileInfo::exists("/tmp/nvh-micCheck.txt"));
    }

    void judgesTables_data() {
        QTest::addColumn<QByteArray>("table");
        QTest::addColumn<bool>("pass");
        QTest::newRow("empty") << QByteArray() << true;
        QTest::newRow("above at the upper bound") << QByteArray("1000 0 5.1 0") << false;
        QTest::newRow("above at the lower bound") << QByteArray("900 0 5.1 0") << false;
        QTest::newRow("at the threshold") << QByteArray("1000 0 5.0 0") << true;
        QTest::newRow("outside the band") << QByteArray("1000.5 0 5.1 0\n899.9 0 9 0") << true;
        QTest::newRow("last line of many") << QByteArray("100 1 2 3\n\n950 9 1 9\r\n950\t1  7e0\n") << false;
        QTest::newRow("missing level") << QByteArray("950 9") << true;
        QTest::newRow("unreadable level") << QByteArray("950 0 loud 0") << true;
        QTest::newRow("unreadable frequency") << QByteArray("x 0 9 0") << true;
        QTest::newRow("blank before the line") << QByteArray(" 950 0 9 0") << true;
    }

    void judgesTables() {
        QFETCH(QByteArray, table);
        QTEST(mWorker.resultsCheck(table, 900, 1000, 5.0), "pass");
    }

    void repairsWavHeaders_data() {
        QTest::addColumn<int>("size");
        QTest::addColumn<qint32>("dataSize");
        QTest::addColumn<qint32>("riffSize");
        QTest::newRow("header alone") << 44 << 0 << 36;
        QTest::newRow("one frame") << 60 << 16 << 52;
        QTest::newRow("short of a header") << 10 << -34 << 2;
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
