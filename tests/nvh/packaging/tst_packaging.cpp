// Packing a run's files, and what becomes of them when that fails.

#include "nvh/packaging/NvhPackageManager.h"
#include "tests/support/MachineTest.h"
#include "tests/support/Rows.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>

#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString kPackage = QStringLiteral("/tmp/TEST1VEHICLE00001-1.tgz");
const QString kNext = QStringLiteral("/tmp/TEST1VEHICLE00001-2.tgz");

// A manager that saves, with all that it says in a journal.
struct SavingManager : NvhPackageManager {
    explicit SavingManager(Journal& journal) {
        journal.watch(this);
        setSaveOnlyState(true);
        onOutcome(this, [this](const PackageOutcome& outcome) { last = outcome; });
    }
    void pack(QString package, QStringList files) { startPackageManagerProcess(package, files); }

    PackageOutcome last;
};

// Waits with its end until it is told.
const QByteArray kSlowGzip = "/bin/gzip \"$@\"; while [ ! -e /tmp/recorder-may-end ]; do sleep 0.01; done";

int modeOf(const QString& file) {
    struct stat status {};
    return ::stat(qPrintable(file), &status) == 0 ? int(status.st_mode & 07777) : -1;
}

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
        QCOMPARE(manager.last.rescueFolder + manager.packageName(), kNext);
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
        QVERIFY(manager.last.what == PackageOutcome::What::NothingToPack && !manager.last.isGood());
    }

    void namesArchiveWhenItIsWhole_data() {
        const auto row = columns<bool>("destroyed");
        row("left alone", false);
        row("destroyed meanwhile", true);
    }

    void namesArchiveWhenItIsWhole() {
        QFETCH(bool, destroyed);
        replaceProgram("gzip", kSlowGzip);
        writeFile("/tmp/notes.wav", "notes");
        const QString part = kPackage + ".part";
        {
            SavingManager manager(*mJournal);
            manager.pack(kPackage, {"/tmp/notes.wav"});
            QTRY_VERIFY(QFileInfo(part).size() > 100);
            QCOMPARE(modeOf(part), 0600);
            QCOMPARE(manager.countSavedFiles(), 0);
            QVERIFY(manager.isPackaging("/tmp/notes.wav") && QFileInfo::exists("/tmp/notes.wav"));
            if (!destroyed) {
                writeFile("/tmp/recorder-may-end", QByteArray());
                QVERIFY(waitFor("> fileSaved"));
                QVERIFY(!manager.isPackaging() && manager.last.isGood());
                QCOMPARE(modeOf(kPackage), 0600);
            }
        }
        QCOMPARE(archiveMember(kPackage, "tmp/notes.wav"), QByteArray(destroyed ? "" : "notes"));
        QCOMPARE(QFileInfo::exists("/tmp/notes.wav"), destroyed);
        QCOMPARE(QDir("/tmp").entryList({"TEST1*"}).size(), destroyed ? 0 : 1);
    }

    void rescuesFilesOfArchiveWithoutName_data() {
        const auto row = columns<QString, QString>("obstacle", "words");
        row("a folder has its name", "folder", kPackage + ": Is a directory");
        row("a link lies in its way", "link", kPackage + ".part: Too many levels of symbolic links");
    }

    void rescuesFilesOfArchiveWithoutName() {
        QFETCH(QString, obstacle);
        writeFile("/tmp/recorder-other", "somebody's");
        if (obstacle == "folder")
            QVERIFY(QDir().mkdir(kPackage));
        else
            QCOMPARE(::symlink("/tmp/recorder-other", qPrintable(kPackage + ".part")), 0);
        writeFile("/tmp/notes.wav", "notes");
        SavingManager manager(*mJournal);
        manager.pack(kPackage, {"/tmp/notes.wav"});
        QVERIFY(waitFor("> packageManagerFailure"));
        QTRY_VERIFY(!manager.isPackaging());
        QVERIFY(!mJournal->has("> fileSaved") && manager.last.what == PackageOutcome::What::Incomplete);
        QTEST(manager.last.words, "words");
        QCOMPARE(readFile(manager.last.rescueFolder + "/notes.wav"), QByteArray("notes"));
        QCOMPARE(readFile("/tmp/recorder-other"), QByteArray("somebody's"));
        QVERIFY(!QFileInfo(kPackage).isFile());
        QCOMPARE(QFileInfo::exists(kPackage + ".part"), obstacle == "link");
    }

    void leavesFilesWhereDiskIsFull() {
        QCOMPARE(QProcess::execute("mount", {"-t", "tmpfs", "-o", "size=16k", "tmpfs", "/tmp/capture"}), 0);
        QByteArray noise;
        for (quint32 seed = 1; noise.size() < 200000; seed = seed * 1664525 + 1013904223)
            noise += char(seed >> 24);
        writeFile("/tmp/recording.wav", noise);
        SavingManager manager(*mJournal);
        manager.pack("/tmp/capture/TEST1VEHICLE00001-1.tgz", {"/tmp/recording.wav"});
        QTRY_VERIFY(!manager.isPackaging());
        const QStringList left = QDir("/tmp/capture").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        QCOMPARE(QProcess::execute("umount", {"/tmp/capture"}), 0);
        QCOMPARE(left, QStringList());
        QCOMPARE(manager.last.rescueFolder + ' ' + manager.last.program, "/tmp gzip");
        QVERIFY2(manager.last.words.contains("No space left on device"), qPrintable(manager.last.words));
        QCOMPARE(readFile("/tmp/recording.wav"), noise);
    }

    void packsOwnPlainFilesAlone() {
        writeFile("/tmp/recording.wav", "own");
        writeFile("/tmp/notes.wav", "another user's");
        writeFile("/tmp/nvh-wheelspeeds.txt", "another user's");
        // Where there is one user only, a directory stands for what is not his plain file.
        if (::chown("/tmp/nvh-wheelspeeds.txt", 65534, 65534) != 0 || ::chown("/tmp/notes.wav", 65534, 65534) != 0)
            QVERIFY(QFile::remove("/tmp/notes.wav") && QDir().mkdir("/tmp/notes.wav"));
        QCOMPARE(::symlink("/etc/passwd", "/tmp/ambient.wav"), 0);
        QCOMPARE(::mkfifo("/tmp/nvh-rpm.txt", 0600), 0);
        SavingManager manager(*mJournal);
        manager.pack(kPackage, {"/tmp/recording.wav", "/tmp/ambient.wav", "/tmp/notes.wav", "/tmp/nvh-rpm.txt",
                                "/tmp/nvh-wheelspeeds.txt"});
        QVERIFY(waitFor("> fileSaved"));
        QCOMPARE(archiveMembers(kPackage), QStringList({"tmp/recording.wav", "tmp/nvh-wheelspeeds.txt"}));
        QCOMPARE(mJournal->withPrefix("ERROR Not Packed: /tmp/").size(), 3);
        QCOMPARE(mJournal->withPrefix("ERROR").size(), 3);
        for (const char* file : {"/tmp/notes.wav", "/tmp/ambient.wav", "/tmp/nvh-rpm.txt"})
            QVERIFY2(QFileInfo::exists(file), file);
    }

    void keepsFilesOfBadArchive_data() {
        const auto row =
            columns<QString, QByteArray, QString, int, QString>("program", "script", "archive", "failures", "words");
        const QString gone = "tar tar: /tmp/nvh-gone.txt: Cannot stat: No such file or directory";
        row("tar fails", "tar", "/bin/tar \"$@\"; exit 2", kPackage, 0, gone);
        row("tar packs nothing", "tar", "head -c 10240 /dev/zero", kPackage, 0, "tar ");
        row("tar crashes", "tar", "echo ./tar: oh >&2; kill -9 $$", kPackage, 1, "tar ./tar: oh");
        row("tar absent", "tar", {}, kPackage, 1, "tar ");
        row("gzip fails", "gzip", "/bin/gzip \"$@\"; echo gzip oh >&2; exit 1", kPackage, 0, "gzip gzip oh");
        row("gzip crashes", "gzip", "kill -9 $$", kPackage, 2, "gzip ");
        row("gzip absent", "gzip", {}, kPackage, 2, "gzip ");
        row("blank in a name", {}, {}, kPackage, 0, gone);
        row("no place for the archive", {}, {}, "/proc/none/x.tgz", 1,
            " /proc/none/x.tgz.part: No such file or directory");
    }

    void keepsFilesOfBadArchive() {
        const auto [program, script, archive, failures] = cells<QString, QByteArray, QString, int>();
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
        QCOMPARE(manager.last.rescueFolder, folder);
        const QString said = QString(manager.last.words).remove(QRegularExpression("^/.*bin/"));
        QTEST(manager.last.program + ' ' + said, "words");
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
