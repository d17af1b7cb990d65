// Uploading packages and registering them, against a server that answers as it is told.

#include "nvh/packaging/NvhPackageManager.h"
#include "tests/support/MachineTest.h"
#include "tests/support/Rows.h"
#include "tests/support/ScriptedServer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTimer>

namespace {

// Line feeds alone, since carriage returns would not show where a comparison fails.
const QByteArray kStored = "HTTP/1.1 200 OK\n\nhttp://store/one.tgz and more";
const QByteArray kPosted = "HTTP/1.1 201 Created\n\n{\"VDT Feedback\": \"Well driven\"}";

using What = PackageOutcome::What;

QString packagePath(int number) {
    return QStringLiteral("/tmp/TEST1VEHICLE00001-%1.tgz").arg(number);
}

}  // namespace

class TestUploads : public MachineTest {
    Q_OBJECT

private slots:
    void init() {
        MachineTest::init();
        mServer = std::make_unique<ScriptedServer>();
        configure("nvh/mes_url", mServer->url("/vdt/upload"));
        configure("nvh/sonvara_api", mServer->url("/vdt/sonvara_files"));
        mManager = std::make_unique<NvhPackageManager>();
        mJournal->watch(mManager.get());
        mOutcomes.clear();
        mManager->onOutcome(this, [this](const PackageOutcome& outcome) { mOutcomes.append(outcome); });
        // Asked again but once when the server says that it is at fault.
        writeFile("/tmp/capture/.curlrc", "retry-max-time = 1\n");
        qputenv("CURL_HOME", "/tmp/capture");
    }
    void cleanup() {
        mManager.reset();
        MachineTest::cleanup();
    }

    void uploadsAndPosts() {
        mServer->answer({kStored, kPosted});
        const QString package = savePackage(1);
        upload(package);
        QVERIFY(waitFor("> updateFeedbackLabel Well driven"));
        const QString payload = "{\"url\":\"http://store/one.tgz and more\"}";
        const QString expected =
            "> packageUploadStart|INFO Uploading: %1 1e-05 MB |"
            "INFO Executing: curl -i -X POST --retry 3 --connect-timeout 10 -m 60 -H \"Content-Type: "
            "multipart/form-data\" -F \"data=@%1\" %2 |INFO parsePackageUploadResponse Upload Success! %3 |"
            "> packageUploadSuccess|INFO Adding File Metadata to Sonvara API... |INFO Payload: %4 |"
            "> metadataUploadStart|INFO Exec: curl [-i, -X, POST, --retry, 3, --connect-timeout, 10, -m, 20, -H, "
            "Content-Type: application/json, -d, %4, %5] |INFO Sonvara API:  %6 |INFO Metadata Posted! |"
            "INFO Well driven |> metadataUploadSuccess|> updateFeedbackLabel Well driven";
        QCOMPARE(mJournal->entries(), expected
                                          .arg(package, mServer->url("/vdt/upload"), kStored, payload,
                                               mServer->url("/vdt/sonvara_files"), kPosted)
                                          .split('|'));
        QVERIFY(!QFileInfo::exists(package));
        QCOMPARE(mManager->getUploadSuccessCount(), 1);
        const QByteArray stored = mServer->requests().value(0);
        QVERIFY(stored.startsWith("POST /vdt/upload HTTP/1.1\r\n"));
        QVERIFY(stored.contains("name=\"data\"; filename=\"TEST1VEHICLE00001-1.tgz\""));
        QVERIFY(stored.contains("\r\n\r\npackage 1\n\r\n"));
        QVERIFY(mServer->requests().value(1).contains("\r\nContent-Type: application/json\r\n"));
        QVERIFY(mServer->requests().value(1).endsWith("\r\n\r\n" + payload.toUtf8()));
    }

    void judgesUploads_data() {
        const auto row = columns<QString, bool>("response", "stored");
        row("after an interim answer", QString("HTTP/1.1 100 Continue\n\n" + kStored), true);
        row("without a URL", "HTTP/1.1 200 OK\n\nhttps://store/one.tgz", false);
        row("another status", "HTTP/1.1 201 Created\n\nhttp://store/one.tgz", false);
        row("server at fault", "HTTP/1.1 500 Oh\n\nhttp://store/one.tgz", false);
        row("cut before the URL", "HTTP/1.1 200 OK\nContent-Length: 20\n\nhtt", false);
        row("cut in the URL", "HTTP/1.1 200 OK\nContent-Length: 20\n\nhttp://s", false);
        row("headers without an end", "HTTP/1.1 200 OK\nAt: http://store/one.tgz\n", false);
        row("interim answer alone", "HTTP/1.1 100 Continue\nAt: http://HTTP/1.1 200 OK\n\n", false);
        row("no end after an interim answer", "HTTP/1.1 100 Continue\n\nHTTP/1.1 200 OK\nAt: http://store\n", false);
        row("no answer", "", false);
        row("refused", "refused", false);
    }

    void judgesUploads() {
        const auto [response, stored] = cells<QString, bool>();
        if (response == "refused")
            mServer->refuse();
        else
            mServer->answer({response.toUtf8(), response.toUtf8()});
        const QString package = savePackage(1);
        upload(package);
        QVERIFY(waitFor(stored ? "> metadataUploadStart" : "> packageUploadFailure"));
        QCOMPARE(mJournal->count("> packageUploadSuccess"), stored ? 1 : 0);
        if (stored)
            return;
        QCOMPARE(mJournal->withPrefix("INFO parsePackageUploadResponse Upload Failed! ").size(), 1);
        const QStringList signalled = mJournal->withPrefix("> ");
        QCOMPARE(signalled[0], "> packageUploadStart");
        QVERIFY(signalled[1].startsWith("> updateFeedbackLabel Package upload failed\n"));
        QVERIFY(signalled[1].endsWith(response == "refused" ? "\n" : response));
        QCOMPARE(signalled.mid(2), QStringList({"> packageUploadFailure", "> packageManagerFailure"}));
        QCOMPARE(mManager->getUploadFailCount(), 1);
        QCOMPARE(readFile(package), QByteArray("package 1\n"));
        QVERIFY(mOutcomes.value(0).what == What::NotStored);
        const QString last = response.section("Continue\n\n", -1).section('\n', 0, 0);
        QCOMPARE(mOutcomes[0].words, last.startsWith("HTTP/1.1 1") || response == "refused" ? QString() : last);
    }

    void judgesPosts_data() {
        const auto row = columns<QString, QString>("response", "feedback");
        const QString none = "No live feedback available.";
        row("blanks", "HTTP/1.1 201 Made\n\n{\"VDT Feedback\": \" \\n \"}", none);
        row("between blanks", "HTTP/1.1 201\n\n{\"VDT Feedback\": \" good \"}", " good ");
        row("umlaut", "HTTP/1.1 201\n\n{\"VDT Feedback\": \"g\\u00f6ö\"}", "göö");
        row("another member", "HTTP/1.1 201 Created\n\n{\"Feedback\": \"x\"}", none);
        row("no JSON", "HTTP/1.1 201 Created\n\n{VDT Feedback", none);
        row("200", "HTTP/1.1 200 OK\n\n{\"VDT Feedback\": \"x\"}", {});
        row("cut", "HTTP/1.1 201 Created\nContent-Length: 99\n\n{\"VDT F", {});
        row("headers without an end", "HTTP/1.1 201 Created\nServer: {}\n", {});
        row("no answer", "", {});
    }

    void judgesPosts() {
        const auto [response, feedback] = cells<QString, QString>();
        const bool posted = !feedback.isEmpty();
        mServer->answer({kStored, response.toUtf8()});
        const QString package = savePackage(1);
        upload(package);
        QTRY_COMPARE(mJournal->withPrefix("> ").size(), 5);
        const QStringList signalled = mJournal->withPrefix("> ").mid(3);
        QCOMPARE(signalled[0], posted ? "> metadataUploadSuccess" : "> metadataUploadFailure");
        QVERIFY(signalled[1].startsWith("> updateFeedbackLabel " +
                                        (posted ? feedback : "Error uploading package to Sonvara API\n" + response)));
        QCOMPARE(mManager->getUploadSuccessCount(), posted ? 1 : 0);
        QCOMPARE(mManager->getUploadFailCount(), posted ? 0 : 1);
        QCOMPARE(QFileInfo::exists(package), !posted);
    }

    void believesNoPartialTransfer_data() {
        const auto row = columns<int, bool, bool>("status", "forPost", "accepted");
        for (int status : {8, 16, 18, 23, 26, 28, 52, 55, 56, 92}) {
            row(qPrintable(QString("upload %1").arg(status)), status, false, false);
            row(qPrintable(QString("post %1").arg(status)), status, true, false);
        }
        row("upload 3", 3, false, true);
        row("post 22", 22, true, true);
    }

    void believesNoPartialTransfer() {
        const auto [status, forPost, accepted] = cells<int, bool, bool>();
        const QByteArray end = "exit " + QByteArray::number(status);
        replaceCurl("printf 'HTTP/1.1 200 OK\\n\\nhttp://store/one.tgz'; " + (forPost ? QByteArray() : end),
                    "printf 'HTTP/1.1 201 Created\\n\\n{}'; " + end);
        upload(savePackage(1));
        QTRY_COMPARE(mOutcomes.size(), 1);
        QVERIFY(mOutcomes[0].what == (accepted ? What::Registered : forPost ? What::NotRegistered : What::NotStored));
        QCOMPARE(QFileInfo::exists(packagePath(1)), !accepted);
        QCOMPARE(mManager->getUploadFailCount(), accepted ? 0 : 1);
    }

    void endsCallThatLastsTooLong_data() {
        const auto row = columns<bool>("forPost");
        row("upload", false);
        row("post", true);
    }

    void endsCallThatLastsTooLong() {
        QFETCH(bool, forPost);
        mManager->setLongestCall(forPost ? 1000 : 200);
        mServer->answer({kStored});
        connect(mManager.get(),
                forPost ? &NvhPackageManager::metadataUploadStart : &NvhPackageManager::packageUploadStart,
                mServer.get(), &ScriptedServer::hold);
        upload(savePackage(1));
        QTRY_COMPARE(mOutcomes.size(), 1);
        QVERIFY(mOutcomes[0].what == (forPost ? What::NotRegistered : What::NotStored));
        QVERIFY(mJournal->has(forPost ? "> metadataUploadFailure" : "> packageUploadFailure"));
        // It has not crashed: the one report belongs to the upload's failure.
        QCOMPARE(mJournal->count("> packageManagerFailure"), forPost ? 0 : 1);
        QCOMPARE(childPrograms(), QStringList());
        QVERIFY(QFileInfo::exists(packagePath(1)) && mManager->isIdle());
    }

    void staysResponsive_data() {
        const auto row = columns<QByteArray, QByteArray, What>("stored", "posted", "what");
        const QByteArray created = "HTTP/1.1 201 Created\n\n{\"VDT Feedback\": ";
        const QByteArray much(20'000'000, '/');
        QByteArray list = "{\"x\": [";
        while (list.size() < 20'000'000)
            list += "0,{},";
        row("long failure", "HTTP/1.1 500 Oh\n\n" + much, {}, What::NotStored);
        row("long URL", kStored + much, {}, What::NotStored);
        row("URL just too long", kStored + QByteArray(140'000, 'x'), {}, What::NotStored);
        row("long list", kStored, "HTTP/1.1 201 Created\n\n" + list, What::Registered);
        row("long feedback", kStored, created + '"' + much.left(15'000'000) + "\"}", What::Registered);
        row("long refusal", kStored, "HTTP/1.1 403 No\n\n" + list, What::NotRegistered);
    }

    void staysResponsive() {
        const auto [stored, posted] = cells<QByteArray, QByteArray>();
        writeFile("/tmp/capture/stored", stored);
        writeFile("/tmp/capture/posted", posted);
        replaceCurl("cat /tmp/capture/stored", "cat /tmp/capture/posted");
        QElapsedTimer clock;
        qint64 longest = 0;
        QTimer tick;
        connect(&tick, &QTimer::timeout, [&] { longest = qMax(longest, clock.restart()); });
        upload(savePackage(1));
        clock.start();
        tick.start(1);
        QTRY_COMPARE(mOutcomes.size(), 1);
        QTEST(mOutcomes[0].what, "what");
        QVERIFY2(longest < 100, qPrintable(QString::number(longest)));
        for (const QString& entry : mJournal->entries())
            QVERIFY(entry.size() < 70'000);
        QCOMPARE(QFileInfo::exists(packagePath(1)), mOutcomes[0].what != What::Registered);
    }

    void keepsPackageThatTookItsPlace() {
        mServer->answer({kStored, kPosted});
        connect(mManager.get(), &NvhPackageManager::metadataUploadStart, [] {
            writeFile("/tmp/recorder-new", "replaced!\n");
            QVERIFY(QFile::remove(packagePath(1)) && QFile::rename("/tmp/recorder-new", packagePath(1)));
        });
        upload(savePackage(1));
        QVERIFY(waitFor("> updateFeedbackLabel Well driven"));
        QCOMPARE(mJournal->withPrefix("ERROR"), QStringList("ERROR Package Remove Failed! "));
        QCOMPARE(readFile(packagePath(1)), QByteArray("replaced!\n"));
        QCOMPARE(mManager->getUploadSuccessCount(), 1);
    }

    void passesOverWhatCannotBeSent() {
        const QString stem = "/tmp/TEST1VEHICLE00001-";
        for (const char* bad : {"\" -K \"x", "\\", ",", ";type=x", "\n"})
            writeFile(stem + bad + ".tgz", "bad");
        QVERIFY(QDir().mkdir(stem + "folder.tgz") && QFile::link("/etc/passwd", stem + "link.tgz"));
        mManager->uploadAllSavedPackages();
        QCOMPARE(mJournal->count("> packageUploadFailure"), 1);
        QCOMPARE(mJournal->withPrefix("ERROR Package Passed Over: /tmp/TEST1").size(), 7);
        QVERIFY(!mJournal->has("> packageUploadStart") && !mJournal->has("INFO All Files Uploaded! "));
        QVERIFY(mOutcomes.size() == 7 && mOutcomes[6].what == What::PassedOver && mOutcomes[6].number == 7);

        mServer->answer({kStored, kPosted, kStored, kPosted});
        writeFile(stem + "x y.tgz", "package 1");
        savePackage(2);
        mManager->uploadAllSavedPackages();
        QTRY_COMPARE(mOutcomes.size(), 16);
        QCOMPARE(mManager->countSavedFiles(), 7);
        QCOMPARE(uploaded(), "21");
        upload(stem + ",.tgz");
        QVERIFY(mOutcomes.last().what == What::PassedOver && mManager->isIdle());
    }

    void keepsWishesApart() {
        savePackage(1);
        savePackage(2);
        mServer->answer({kStored});
        const auto holding =
            connect(mManager.get(), &NvhPackageManager::metadataUploadStart, mServer.get(), &ScriptedServer::hold);
        mManager->uploadAllSavedPackages();
        QTRY_COMPARE(mServer->requests().size(), 2);
        // While the first is being registered, one is packed for the server and one is not.
        build(3);
        QTRY_VERIFY(!mManager->isPackaging());
        mManager->setSaveOnlyState(true);
        build(4);
        QVERIFY(waitFor("> fileSaved"));
        QCOMPARE(mManager->countSavedFiles(), 4);
        mServer->answer({kPosted, kStored, kPosted, kStored, kPosted});
        disconnect(holding);
        mServer->release();
        QTRY_COMPARE(mOutcomes.size(), 4);
        QVERIFY(QFileInfo::exists(packagePath(4)));
        QCOMPARE(mManager->countSavedFiles(), 1);
        upload(packagePath(4));
        QCOMPARE(mJournal->count("> fileSaved"), 2);
        QVERIFY(mOutcomes.last().what == What::Kept && mOutcomes.last().isGood());
    }

    void repeatsNotesAndKnowsItsSubject() {
        mServer->answer({kStored, kPosted});
        QList<int> subjects;
        connect(mManager.get(), &NvhPackageManager::packagingStart, [&] { subjects += mManager->subject(); });
        connect(mManager.get(), &NvhPackageManager::fileSaved, [&] { subjects += mManager->subject(); });
        connect(mManager.get(), &NvhPackageManager::packageUploadStart, [&] { subjects += mManager->subject(); });
        connect(mManager.get(), &NvhPackageManager::metadataUploadSuccess, [&] { subjects += mManager->subject(); });
        const int number = mManager->newNumber();
        mManager->setSaveOnlyState(true);
        // tar misses one: this has its note too.
        writeFile("/tmp/notes.wav", "notes");
        mManager->pack({number,
                        packagePath(1),
                        {"/tmp/notes.wav", "/tmp/nvh-gone.txt"},
                        PackageJob::Wish::Upload,
                        {"No recording\nthe recorder wrote nothing"}});
        QTRY_COMPARE(mOutcomes.size(), 1);
        QCOMPARE(mManager->subject(), 0);
        upload(packagePath(2));
        QCOMPARE(subjects, QList<int>({number, number, number, number + 1}));
        const QString note = "\nNo recording\nthe recorder wrote nothing";
        const QString rescue = "Packaging failed\nThe files are kept in /tmp/TEST1VEHICLE00001-1.rescue";
        QCOMPARE(mJournal->withPrefix("> updateFeedbackLabel "),
                 QStringList({"> updateFeedbackLabel " + rescue, "> updateFeedbackLabel " + rescue + note,
                              "> updateFeedbackLabel Well driven",
                              "> updateFeedbackLabel Well driven" + note + '\n' + rescue}));
        QCOMPARE(mOutcomes[0].feedback + mOutcomes[0].url, "Well driven" + mServer->url("/vdt/sonvara_files"));
        QVERIFY(!mOutcomes[0].isGood() && mOutcomes[0].number == number);
    }

    void reportsAbsentCurl_data() { endsCallThatLastsTooLong_data(); }

    void reportsAbsentCurl() {
        QFETCH(bool, forPost);
        if (forPost)
            connect(mManager.get(), &NvhPackageManager::packageUploadSuccess, [] { hideProgram("curl"); });
        else
            hideProgram("curl");
        mServer->answer({kStored});
        upload(savePackage(1));
        upload(savePackage(2));
        QVERIFY(waitFor(forPost ? "ERROR POST METADATA FAILED! " : "ERROR PACKAGE UPLOAD FAILED! "));
        // The one that waited has its turn as well.
        QTRY_COMPARE(mJournal->count("> packageUploadStart"), 2);
        QTRY_VERIFY(mManager->isIdle());
        QCOMPARE(mManager->countSavedFiles(), 2);
    }

    // Each process of either kind adds one more report of every later failure.
    void reportsFailuresOncePerProcess() {
        for (int number : {1, 2}) {
            mServer->answer({kStored, kPosted});
            upload(savePackage(number));
            QTRY_COMPARE(mManager->getUploadSuccessCount(), number);
        }
        mJournal->clear();
        upload("/tmp/absent.tgz");
        QCOMPARE(mJournal->entries().mid(0, 2),
                 QStringList({"ERROR Package Name Mismatch! ", "> packageUploadFailure"}));
        QCOMPARE(mJournal->count("ERROR PACKAGE UPLOAD FAILED! "), 2);
        QCOMPARE(mJournal->count("ERROR POST METADATA FAILED! "), 2);
        QCOMPARE(mJournal->count("> packageManagerFailure"), 4);
    }

    void uploadsWhatIsPackedWhileQueueRuns() {
        savePackage(1);
        savePackage(2);
        mServer->answer({kStored, kPosted, kStored, kPosted, kStored, kPosted});
        replaceProgram("gzip", "/bin/gzip; while [ ! -e /tmp/recorder-may-end ]; do sleep 0.01; done");
        build(3);
        mManager->uploadAllSavedPackages();
        QTRY_VERIFY(!QFileInfo::exists(packagePath(2)));
        writeFile("/tmp/recorder-may-end", QByteArray());
        QTRY_VERIFY(!QFileInfo::exists(packagePath(3)));
        QCOMPARE(mJournal->withPrefix("ERROR"), QStringList());
    }

    void uploadsQueueInOrder() {
        mManager->uploadAllSavedPackages();
        QCOMPARE(mJournal->entries(), QStringList("INFO Found Packages: [] "));
        writeFile("/tmp/OTHER1VEHICLE0002-1.tgz", "another vehicle's");
        const QStringList found = {savePackage(3), savePackage(1), savePackage(2)};
        mManager->setSaveOnlyState(true);
        upload(found[0]);
        QCOMPARE(mJournal->entries().mid(1), QStringList({"INFO Skipping Upload..! ", "> fileSaved"}));
        // The second one fails: the chain ends, nothing is lost.
        mServer->answer({kStored, kPosted, "HTTP/1.1 403 No\n\n"});
        mManager->uploadAllSavedPackages();
        QVERIFY(
            mJournal->has("INFO Found Packages: [" + QStringList({found[1], found[2], found[0]}).join(", ") + "] "));
        QVERIFY(waitFor("> packageUploadFailure"));
        QCOMPARE(mManager->countSavedFiles(), 2);
        QVERIFY(mJournal->has("INFO Saved Files: 2 "));
        QTRY_VERIFY(mManager->isIdle());
        QCOMPARE(uploaded(), "12");

        mServer->answer({kStored, kPosted, kStored, kPosted});
        mManager->uploadAllSavedPackages();
        QVERIFY(waitFor("INFO All Files Uploaded! "));
        QCOMPARE(uploaded(), "1223");
        QCOMPARE(mJournal->count("INFO trying to uploading other files "), 4);
        QVERIFY(QFileInfo::exists("/tmp/OTHER1VEHICLE0002-1.tgz"));
    }

private:
    static QString savePackage(int number) {
        writeFile(packagePath(number), "package " + QByteArray::number(number) + "\n");
        return packagePath(number);
    }
    void build(int number) {
        QString package = packagePath(number);
        QStringList files = {"/tmp/notes.wav"};
        writeFile(files[0], "notes");
        mManager->startPackageManagerProcess(package, files);
    }
    // curl is a script each for the upload and for the post.
    static void replaceCurl(const QByteArray& forUpload, const QByteArray& forPost) {
        replaceProgram("curl", "case \"$*\" in *multipart*)\n" + forUpload + "\n;;*)\n" + forPost + "\n;; esac");
    }
    void upload(QString package) { mManager->startUploadingPackage(package); }
    // The numbers of the packages in the order in which they came in.
    QString uploaded() const {
        QByteArray numbers;
        for (const QByteArray& request : mServer->requests()) {
            if (request.startsWith("POST /vdt/upload"))
                numbers += request.mid(request.indexOf("package ") + 8, 1);
        }
        return numbers;
    }

    std::unique_ptr<ScriptedServer> mServer;
    std::unique_ptr<NvhPackageManager> mManager;
    QList<PackageOutcome> mOutcomes;
};

QTEST_GUILESS_MAIN(TestUploads)
#include "tst_uploads.moc"
