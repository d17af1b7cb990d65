#pragma once

#include "nvh/Export.h"
#include "nvh/process/WaitingCalls.h"

#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

// Packs the files of a test run into one archive, and uploads archives to the factory data server.
//
//     manager.setSaveOnlyState(false);
//     manager.startPackageManagerProcess(name, files);   // packagingStart(), packageUploadStart(), …
//
// Lives on the UI thread and never blocks: tar, gzip and curl are child processes whose outcome arrives as signals.
//
// The road of a package: packed, loose files removed; unless in save-only state uploaded, then registered with the
// metadata service; only then deleted. What was kept or failed stays in the package directory, where
// uploadAllSavedPackages() finds it. One upload or registration is under way at a time; what is asked for meanwhile
// waits for its turn.
//
// If tar or gzip fails, or the archive holds nothing, the loose files are kept in a folder beside the package before
// they go; the log and the feedback name it.
class NVH_EXPORT NvhPackageManager : public QObject {
    Q_OBJECT
public:
    NvhPackageManager();
    // Ends what is under way. An archive that is not complete is removed: its loose files are still there.
    ~NvhPackageManager() override;

    // Packs the files (absolute paths, no blanks) into the archive of that absolute path. Another packaging that is
    // under way is completed first.
    void startPackageManagerProcess(QString& packageName, QStringList& files);

    // Packages are kept and not uploaded.
    void setSaveOnlyState(bool saveOnly) { mSaveOnly = saveOnly; }
    bool getSaveOnlyState() const { return mSaveOnly; }

    // Since the last packaging: packages whose metadata was posted; failed uploads and failed posts.
    int getUploadSuccessCount() const { return mUploadSuccessCount; }
    int getUploadFailCount() const { return mUploadFailCount; }
    // Saved packages that the last search found.
    int getSavedFilesCount() const { return mSavedFilesCount; }

    // Searches the package directory for saved packages of this vehicle.
    int countSavedFiles();
    // The same, with their absolute paths in the order of their names.
    QStringList savedPackages() { return findAllSavedPackages(); }
    // Uploads them one after the other in the order of their names; leaves the save-only state. A failure ends the
    // chain; the packages stay.
    void uploadAllSavedPackages();

    // Whether the files of the current test run exist.
    bool ambientSoundRecordingExists() const;
    bool soundRecordingExists() const;
    bool notesRecordingExists() const;

    // The package that was built or uploaded last, an absolute path.
    QString packageName() const { return mPackageName; }
    // Where the loose files of the last package were kept because it is not complete; empty if it is.
    QString rescueFolder() const { return mRescueFolder; }
    // True while nothing is packed, uploaded or posted.
    bool isIdle() const { return !isPackaging() && !isUploading() && mWaitingUploads.isEmpty(); }
    // True while tar and gzip are at work; with a name, only if that file is being packed.
    bool isPackaging() const { return mGzipProcess != nullptr; }
    bool isPackaging(const QString& file) const { return isPackaging() && mFileList.contains(file); }
    // Calls back when no packaging is under way: at once, or as soon as it has ended. Not for a context that is
    // destroyed before.
    void whenNotPackaging(QObject* context, std::function<void()> callback);

signals:
    void fileSaved();
    void packageManagerFailure();
    void packgeManagerSuccess();
    void packagingStart();
    void packagingSuccess(QString& packageName);
    void packagingFailure();
    void packageUploadStart();
    void packageUploadSuccess();
    void packageUploadFailure();
    void metadataUploadStart();
    void metadataUploadSuccess();
    void metadataUploadFailure();
    void updateFeedbackLabel(QString response);

public slots:
    void startUploadingPackage(QString& pkgName);
    void initiateQueueUpload();

private slots:
    void postMetadata(const char* url);
    void postMetadataError();
    void parseMetaPostResponse();
    void packageError();
    void removeUnpackagedFiles();
    void parsePackageUploadResponse();
    void packageUploadError();
    void findAllSavedPackagesError();
    void countSavedFilesError();
    QString readVin();
    QStringList findAllSavedPackages();

private:
    struct PackageRequest {
        QString packageName;
        QStringList files;
    };

    void startPipeline();
    // Clears the pipeline away, the loose files with it; the archive is left as it is.
    void endPipeline();
    void abandonPipeline();
    QStringList safeToRemove();
    QString rescueNote() const;
    void startNextPackaging();
    bool isUploading() const { return mUploading || mPosting; }
    void startWaitingUpload();
    void giveFeedback(const QString& text);

    bool mSaveOnly = false;
    QProcess* mUploadPackageProcess = nullptr;  // all processes: children of this object
    QProcess* mUploadMetadataProcess = nullptr;
    QProcess* mTarProcess = nullptr;
    QProcess* mGzipProcess = nullptr;
    QStringList mFileList;
    QString mPackageName;
    QStringList mSavedPackages;
    QString mFeedback;
    int mUploadSuccessCount = 0;
    int mUploadFailCount = 0;
    int mSavedFilesCount = 0;

    QString mArchiveInWork;        // what the pipeline writes
    bool mPipelineBroken = false;  // tar or gzip could not start or crashed
    QString mRescueFolder;
    std::vector<PackageRequest> mWaitingPackagings;
    WaitingCalls mWhenNotPackaging;

    QString mUploadedPackage;     // the archive that is being uploaded or was last
    QString mPostedPackage;       // the archive whose metadata is being posted
    QStringList mWaitingUploads;  // asked for while another one was under way
    bool mUploading = false;
    bool mPosting = false;
};
