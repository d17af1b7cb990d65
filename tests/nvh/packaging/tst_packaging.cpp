// Packing a run's files, and what becomes of them when that fails.

#include "nvh/packaging/NvhPackageManager.h"
#include "tests/support/MachineTest.h"
#include "tests/support/Rows.h"

namespace {

const QString kPackage = QStringLiteral("/tmp/TEST1VEHICLE00001-1.tgz");
const QString kNext = QStringLiteral("/tmp/TEST1VEHICLE00001-2.tgz");

// A manager that saves, with all that it says in a journal.
struct SavingManager : NvhPackageManager {
    explicit SavingManager(Journal& journal) {
        journal.watch(this);
        setSaveOnlyState(true);
    }
    void pack(QString package, QStringList files) { startPackageManagerProcess(package, files); }
};

}  // namespace

class TestPackaging : public MachineTest {
    Q_OBJECT

private slots:
    void packsOneAfterTheOther() {
        writeFile("/tmp/nvh-rpm.txt", "rpm");
        writeFile("/tmp/recording.wav", QByteArray(300000, 'w'));
        writeFile("/tmp/notes.wav", "notes");
        SavingManager manager(*mJournal);
        manager.pack(kPackage, {"/tmp/recording.wav", "/tmp/nvh-rpm.txt"});
        manager.pack(kNext, {"/tmp/notes.wav"});
        QStringList packedLast;
        manager.whenNotPackaging(this, [&] { packedLast = archiveMembers(kNext); });
        QTRY_COMPARE(packedLast, QStringList("tmp/notes.wav"));
        QCOMPARE(archiveMembers(kPackage), QStringList({"tmp/recording.wav", "tmp/nvh-rpm.txt"}));
        for (const char* file : {"/tmp/recording.wav", "/tmp/nvh-rpm.txt", "/tmp/notes.wav"})
            QVERIFY2(!QFileInfo::exists(file), file);
        QCOMPARE(mJournal->withPrefix("ERROR"), QStringList());
        QCOMPARE(mJournal->count("> fileSaved"), 2);
        QCOMPARE(manager.rescueFolder() + manager.packageName(), kNext);
        QVERIFY(!QFileInfo::exists("/tmp/TEST1VEHICLE00001-1.rescue"));
    }

    void goesOnWithoutFiles() {
        SavingManager manager(*mJournal);
        manager.pack(kPackage, {});
        QVERIFY(waitFor("> fileSaved"));
        QCOMPARE(mJournal->entries(),
                 QStringList({"INFO startPackageManagerProcess ", "ERROR File List Empty! ", "> packagingFailure",
                              "> packagingStart", "INFO Saving to " + kPackage + " ", "INFO tarcmd:  [tar -cvf -] ",
                              "INFO Skipping Upload..! ", "> fileSaved"}));
        QVERIFY(QFileInfo::exists(kPackage));
    }

    void keepsFilesOfBadArchive_data() {
        columns<QString, QByteArray, QString, int>("program", "script", "archive", "failures");
        row("tar fails", "tar", QByteArray("/bin/tar \"$@\"; exit 2"), kPackage, 0);
        row("tar packs nothing", "tar", QByteArray("head -c 10240 /dev/zero"), kPackage, 0);
        row("tar crashes", "tar", QByteArray("kill -9 $$"), kPackage, 1);
        row("tar absent", "tar", QByteArray(), kPackage, 1);
        row("gzip fails", "gzip", QByteArray("/bin/gzip \"$@\"; exit 1"), kPackage, 0);
        row("gzip crashes", "gzip", QByteArray("kill -9 $$"), kPackage, 2);
        row("gzip absent", "gzip", QByteArray(), kPackage, 2);
        row("blank in a name", QString(), QByteArray(), kPackage, 0);
        row("no place for the archive", QString(), QByteArray(), "/proc/none/x.tgz", 1);
    }

    void keepsFilesOfBadArchive() {
        QFETCH(QString, program);
        QFETCH(QByteArray, script);
        QFETCH(QString, archive);
        QFETCH(int, failures);
        if (!script.isEmpty())
            replaceProgram(program, script);
        else if (!program.isEmpty())
            hideProgram(program);
        const QByteArray sound(500000, 's');
        const QString other = program.isEmpty() ? "with blank.wav" : "notes.wav";
        writeFile("/tmp/recording.wav", sound);
        writeFile("/tmp/" + other, "other");
        SavingManager manager(*mJournal);
        manager.pack(archive, {"/tmp/recording.wav", "/tmp/nvh-gone.txt", "/tmp/" + other});
        QTRY_VERIFY(!manager.isPackaging());
        // Where no folder can be made beside the archive, they stay where they are.
        const bool stay = archive != kPackage;
        const QString folder = stay ? "/tmp" : "/tmp/TEST1VEHICLE00001-1.rescue";
        QCOMPARE(manager.rescueFolder(), folder);
        QVERIFY(readFile(folder + "/recording.wav") == sound);
        QCOMPARE(readFile(folder + "/" + other), QByteArray("other"));
        QCOMPARE(QFileInfo::exists("/tmp/recording.wav"), stay);
        QCOMPARE(mJournal->withPrefix("ERROR Package incomplete, its files are kept in " + folder).size(), 1);
        QVERIFY(mJournal->has("> updateFeedbackLabel Packaging failed\nThe files are kept in " + folder));
        QCOMPARE(mJournal->withPrefix("ERROR Cannot Remove:"), QStringList("ERROR Cannot Remove: /tmp/nvh-gone.txt "));
        QCOMPARE(mJournal->count("ERROR Packaging Error! "), failures);
        QCOMPARE(mJournal->count("> packageManagerFailure"), failures);
        // Nothing that looks like a package is left by a gzip that never was.
        QCOMPARE(QFileInfo::exists(archive), !stay && !(program == "gzip" && script.isEmpty()));
        QCOMPARE(childPrograms(), QStringList());

        mMachine.reset();
        mJournal->clear();
        writeFile("/tmp/notes.wav", "next");
        manager.pack(kPackage, {"/tmp/notes.wav"});
        QVERIFY(waitFor("> fileSaved"));
        QCOMPARE(archiveMember(kPackage, "tmp/notes.wav"), QByteArray("next"));
        QCOMPARE(mJournal->withPrefix("ERROR"), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestPackaging)
#include "tst_packaging.moc"
