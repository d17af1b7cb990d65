#pragma once

#include "nvh/Export.h"
#include "nvh/packaging/PackageJob.h"
#include "nvh/packaging/PackageQueue.h"
#include "nvh/process/WaitingCalls.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

class CurlCall;
struct CurlOutcome;
class PackagePipeline;

// Packs the files of a test run into one archive, and uploads archives to the factory data server.
//
//     manager.setSaveOnlyState(false);
//     manager.startPackageManagerProcess(name, files);   // packagingStart(), packageUploadStart(), …
//
// Lives on the UI thread and never blocks: tar, gzip and curl are child processes whose outcome arrives as signals, and
// what waits for the disk or reads a long answer has a thread of its own.
//
// The road of a package: packed, loose files removed; if its wish is so uploaded, then registered with the metadata
// service; only then deleted. What was kept or failed stays in the package directory, where uploadAllSavedPackages()
// finds it. One package is packed at a time, and one is uploaded or registered; what is asked for meanwhile waits for
// its turn with the wish that it was asked with.
//
// If tar or gzip fails, or the archive holds nothing or cannot get its name, the loose files are kept in a folder
// beside the package before they go; the log and the feedback name it.
class NVH_EXPORT NvhPackageManager : public QObject {
    Q_OBJECT
public:
    NvhPackageManager();
    // In any state, but not from a slot of its own signals. Ends what is under way, of which nobody hears any more; an
    // archive that is not complete is removed: its loose files are still there. Blocks until the programs are gone, and
    // as long as a package that is brought to the disk or an answer that is read takes.
    ~NvhPackageManager() override;

    // pack() with a number of its own, without notes, and with the wish that the save-only state says now.
    void startPackageManagerProcess(QString& packageName, QStringList& files);

    // Whether packages are kept and not uploaded: the wish of what is asked for from now on by
    // startPackageManagerProcess() and startUploadingPackage(). For the screen and the tool, at any time.
    void setSaveOnlyState(bool saveOnly) { mSaveOnly = saveOnly; }
    bool getSaveOnlyState() const { return mSaveOnly; }

    // Since the last packaging began: packages whose metadata was posted; failed uploads and failed posts.
    int getUploadSuccessCount() const { return mUploadSuccessCount; }
    int getUploadFailCount() const { return mUploadFailCount; }
    // Saved packages that the last search found.
    int getSavedFilesCount() const { return mSavedFilesCount; }

    // Searches the package directory for saved packages of this vehicle, at once and at any time; without an
    // identification of the vehicle there are none.
    int countSavedFiles();
    // The same, with their absolute paths in the order of their names.
    QStringList savedPackages() { return findAllSavedPackages(); }
    // Uploads them one after the other in the order of their names; leaves the save-only state. At any time; does
    // nothing if there are none. A failure ends the chain; the packages stay. One that cannot be sent is named at
    // "ERROR" and passed over; if none is left to send, packageUploadFailure() follows.
    void uploadAllSavedPackages();

    // Whether the files of the current test run exist. For the screen, at any time.
    bool ambientSoundRecordingExists() const;
    bool soundRecordingExists() const;
    bool notesRecordingExists() const;

    // A number for a package that is going to be packed, for whoever makes its job; no two are alike.
    int newNumber() { return ++mLastNumber; }
    // The package that the signal being emitted now is about; 0 while none is. Saved packages and those of
    // startUploadingPackage() have numbers of their own.
    int subject() const { return mSubject; }

    // Packs the job's files (absolute paths, no blanks) into the archive of its absolute path, then keeps or uploads it
    // as the job wishes. At any time; waits for packages that are being packed. Files that are not the user's own are
    // named at "ERROR" and left alone. The job's notes stand below every feedback text about it: each text is emitted
    // alone, then again with the notes.
    void pack(const PackageJob& job);
    // Calls back once for each package when it is decided what has become of it, on the UI thread, after the signals
    // about it. Several may ask, at any time. Not for a context that is destroyed before.
    void onOutcome(QObject* context, std::function<void(const PackageOutcome&)> callback);

    // How long an upload or a post may last before it is ended and has failed; for those that start after this.
    void setLongestCall(int milliseconds) { mLongestCallMs = milliseconds; }

    // The package that was built or uploaded last, an absolute path.
    QString packageName() const { return mPackageName; }
    // True while nothing is packed, uploaded or posted, or waits for that.
    bool isIdle() const { return mPackings.isEmpty() && mTransfers.isEmpty(); }
    // True until a package that is being packed has its name and its loose files are gone; with a name, only if that
    // file is being packed or waits for it. Nobody may delete such a file.
    bool isPackaging() const { return mPackings.isBusy(); }
    bool isPackaging(const QString& file) const;
    // Calls back when no packaging is under way: at once, or as soon as it has ended. Not for a context that is
    // destroyed before.
    void whenNotPackaging(QObject* context, std::function<void()> callback);

signals:
    // A package is kept, as its job wished; also one that is not complete or not there, as onOutcome() tells.
    void fileSaved();
    // A program could not be started or crashed, or an archive could not get its name. Also after
    // packageUploadFailure(), once for every run of curl so far.
    void packageManagerFailure();
    // Never emitted; for programs that connect to it.
    void packgeManagerSuccess();
    // tar and gzip are about to start.
    void packagingStart();
    // Never emitted; for programs that connect to it.
    void packagingSuccess(QString& packageName);
    // There is nothing to pack; packagingStart() follows.
    void packagingFailure();
    // curl is about to start; packageUploadSuccess() or packageUploadFailure() follows, or packageManagerFailure()
    // alone if it could not be started. The same with the three of the metadata.
    void packageUploadStart();
    // Stored at the factory; metadataUploadStart() follows.
    void packageUploadSuccess();
    // Not stored, not there, or not to be sent.
    void packageUploadFailure();
    void metadataUploadStart();
    // Registered, and deleted here.
    void metadataUploadSuccess();
    // Stored but not registered; the package stays here.
    void metadataUploadFailure();
    // For the driver, replacing the text before.
    void updateFeedbackLabel(QString response);

public slots:
    // Uploads a package that is there, or in save-only state says that it is saved. At any time; waits for the one that
    // is on its way, and does nothing if the package waits already.
    void startUploadingPackage(QString& pkgName);
    // Uploads the next package of the chain; called after every metadataUploadSuccess() once there has been a chain.
    void initiateQueueUpload();

private slots:
    void postMetadata(const char* url);
    void postMetadataError();
    void parseMetaPostResponse();
    void packageError();
    void removeUnpackagedFiles();
    void parsePackageUploadResponse();
    void packageUploadError();
    // These two are never called; for programs that call them by name.
    void findAllSavedPackagesError();
    void countSavedFilesError();
    QString readVin();
    QStringList findAllSavedPackages();

private:
    // As long as it lives, what the manager emits is about that package.
    class About {
    public:
        About(NvhPackageManager* manager, int number) : mSubject(manager->mSubject), mBefore(mSubject) {
            mSubject = number;
        }
        ~About() { mSubject = mBefore; }
        About(const About&) = delete;
        About& operator=(const About&) = delete;

    private:
        int& mSubject;
        const int mBefore;
    };
    struct Listener {
        QPointer<QObject> context;
        std::function<void(const PackageOutcome&)> callback;
    };

    void startNextPackaging();
    // Keeps the package or lets it wait for its upload, as its job wishes.
    void handOn(PackageTask& task);
    // The next one of the chain that can be sent. The number of the last one that was passed over if none can, else 0.
    int uploadNextSaved();
    void startNextTransfer();
    void startTransfer(PackageTask& task);
    // The package in work cannot even be tried.
    void refuseTransfer(PackageOutcome::What what);
    // curl could not be started for the package in work; the next one has its turn.
    void dropTransfer(PackageOutcome::What what);
    // An upload or a post has failed; the next one has its turn.
    void reportFailure(PackageTask& task, PackageOutcome::What what, const CurlOutcome& outcome);
    // Whether the system would hand the record of that URL to curl.
    static bool canPost(const char* url);
    // The package has been registered: it goes, and so does what waits for it.
    std::vector<PackageTask> removeRegistered(const PackageTask& task);
    // The subject, or outside of an emission the package in work.
    int subjectOr(const PackageQueue& queue) const;
    void giveFeedback(const PackageTask& task, const QString& text);
    void report(const PackageTask& task);

    bool mSaveOnly = false;
    CurlCall* mUploadPackageProcess = nullptr;  // these three: children of this object
    CurlCall* mUploadMetadataProcess = nullptr;
    PackagePipeline* mPipeline = nullptr;
    QString mPackageName;
    QStringList mSavedPackages;
    QString mFeedback;
    int mUploadSuccessCount = 0;
    int mUploadFailCount = 0;
    int mSavedFilesCount = 0;

    PackageQueue mPackings;   // the one in work is the pipeline's
    PackageQueue mTransfers;  // the one in work is being uploaded, then posted
    WaitingCalls mWhenNotPackaging;
    std::vector<Listener> mListeners;
    int mLongestCallMs = 300 * 1000;
    int mLastNumber = 0;
    int mSubject = 0;
};
