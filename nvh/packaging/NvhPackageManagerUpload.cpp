// Saved packages and their upload.

#include "nvh/engine/Settings.h"
#include "nvh/packaging/CurlCall.h"
#include "nvh/packaging/NvhPackageManager.h"
#include "nvh/packaging/PackageFiles.h"

#include <HelixDash/services/Logger.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <utility>

void NvhPackageManager::startUploadingPackage(QString& pkgName) {
    const PackageJob::Wish wish = mSaveOnly ? PackageJob::Wish::Keep : PackageJob::Wish::Upload;
    if (wish == PackageJob::Wish::Upload && mTransfers.awaits(pkgName))
        return;
    PackageTask task({newNumber(), pkgName, {}, wish, {}});
    handOn(task);
}

void NvhPackageManager::startNextTransfer() {
    while (PackageTask* task = mTransfers.begin())
        startTransfer(*task);
}

void NvhPackageManager::startTransfer(PackageTask& task) {
    const About about(this, task.job.number);
    const QString package = task.job.package;
    mPackageName = package;
    if (!QFile::exists(package)) {
        Logger(this, "ERROR") << "Package Name Mismatch!";
        refuseTransfer(PackageOutcome::What::Missing);
        return;
    }
    if (const QString reason = whyNotSendable(package); !reason.isEmpty()) {
        Logger(this, "ERROR") << "Package Passed Over:" << reason;
        refuseTransfer(PackageOutcome::What::PassedOver);
        return;
    }
    task.holdFile();
    if (!mUploadPackageProcess) {
        mUploadPackageProcess = new CurlCall(ServerAnswer::Wanted::Stored, this);
        connect(mUploadPackageProcess, &CurlCall::ended, this, &NvhPackageManager::parsePackageUploadResponse);
        connect(mUploadPackageProcess, &CurlCall::failed, this, &NvhPackageManager::packageUploadError);
        connect(mUploadPackageProcess, &CurlCall::failed, this, [this, call = mUploadPackageProcess] {
            if (call->outcome().how == CurlOutcome::How::NotStarted)
                dropTransfer(PackageOutcome::What::NotSent);
        });
        // Once more with every process, on purpose: each failure is reported once per upload so far.
        connect(this, &NvhPackageManager::packageUploadFailure, this, &NvhPackageManager::packageUploadError);
    }
    task.outcome.url = cPackageUploadUrl.value();
    const QString command = QStringLiteral(
                                "curl -i -X POST --retry 3 --connect-timeout 10 -m 60 "
                                "-H \"Content-Type: multipart/form-data\" -F \"data=@%1\" %2")
                                .arg(package, task.outcome.url);
    emit packageUploadStart();
    mUploadPackageProcess->startCommand(command, mLongestCallMs);
    const double megabytes = double(QFileInfo(package).size()) / 1e6;
    Logger(this, "INFO") << "Uploading:" << package << QString::number(megabytes, 'g', 6) << "MB";
    Logger(this, "INFO") << "Executing:" << command;
}

void NvhPackageManager::refuseTransfer(PackageOutcome::What what) {
    emit packageUploadFailure();
    PackageTask task = mTransfers.end();
    task.conclude(what, QString(), QString());
    report(task);
}

void NvhPackageManager::dropTransfer(PackageOutcome::What what) {
    PackageTask task = mTransfers.end();
    task.conclude(what, QStringLiteral("curl"), QString());
    report(task);
    QTimer::singleShot(0, this, &NvhPackageManager::startNextTransfer);
}

void NvhPackageManager::parsePackageUploadResponse() {
    if (!mUploadPackageProcess || !mUploadPackageProcess->hasEnded())
        return;
    CurlCall* const call = std::exchange(mUploadPackageProcess, nullptr);
    call->deleteLater();
    CurlOutcome outcome = call->outcome();
    PackageTask& task = *mTransfers.inWork();
    const About about(this, task.job.number);
    const QByteArray& url = outcome.answer.url;
    const bool isStored = outcome.isAccepted() && !url.isEmpty();
    if (isStored && canPost(url.constData())) {
        Logger(this, "INFO") << "parsePackageUploadResponse"
                             << "Upload Success!" << outcome.text;
        emit packageUploadSuccess();
        postMetadata(url.constData());
        return;
    }
    if (isStored)
        outcome.defect = QStringLiteral("the package's URL is too long to be posted");
    if (!outcome.defect.isEmpty())
        Logger(this, "ERROR") << "Upload Not Complete:" << outcome.defect;
    Logger(this, "INFO") << "parsePackageUploadResponse"
                         << "Upload Failed!" << outcome.text;
    ++mUploadFailCount;
    giveFeedback(task, QStringLiteral("Package upload failed\n%1").arg(outcome.text));
    emit packageUploadFailure();
    PackageTask ended = mTransfers.end();
    reportFailure(ended, PackageOutcome::What::NotStored, outcome);
}

void NvhPackageManager::reportFailure(PackageTask& task, PackageOutcome::What what, const CurlOutcome& outcome) {
    const bool crashed = outcome.how == CurlOutcome::How::Crashed;
    const bool sent = !crashed || what != PackageOutcome::What::NotStored;
    task.conclude(sent ? what : PackageOutcome::What::NotSent, crashed ? QStringLiteral("curl") : QString(),
                  outcome.answer.statusLine);
    report(task);
    startNextTransfer();
}

void NvhPackageManager::packageUploadError() {
    const About about(this, subjectOr(mTransfers));
    Logger(this, "ERROR") << "PACKAGE UPLOAD FAILED!";
    emit packageManagerFailure();
}

QStringList NvhPackageManager::findAllSavedPackages() {
    if (cLogVerbose.value())
        Logger(this, "INFO") << "findAllSavedPackages";
    QStringList packages;
    // Without an identification every archive in the directory would count as this vehicle's.
    if (const QString vin = readVin(); !vin.isEmpty()) {
        const QDir directory(cSavedPackagePath.value());
        for (const QFileInfo& entry : directory.entryInfoList({QStringLiteral("%1*.tgz").arg(vin)}))
            packages.append(entry.absoluteFilePath());
    }
    mSavedFilesCount = int(packages.size());
    Logger(this, "INFO") << "Found Packages:" << bracketed(packages);
    return packages;
}

int NvhPackageManager::countSavedFiles() {
    if (cLogVerbose.value())
        Logger(this, "INFO") << "countSavedFiles";
    findAllSavedPackages();
    Logger(this, "INFO") << "Saved Files:" << mSavedFilesCount;
    return mSavedFilesCount;
}

void NvhPackageManager::uploadAllSavedPackages() {
    mSaveOnly = false;
    mSavedPackages = findAllSavedPackages();
    if (mSavedFilesCount <= 0)
        return;
    // One that is about to be packed anew takes care of itself.
    if (isPackaging())
        mSavedPackages.removeAll(mPackings.inWork()->job.package);
    connect(this, &NvhPackageManager::metadataUploadSuccess, this, &NvhPackageManager::initiateQueueUpload,
            Qt::UniqueConnection);
    const int passedOver = uploadNextSaved();
    if (passedOver == 0 || !mTransfers.isEmpty())
        return;
    // Whoever has asked must hear that it is over.
    const About about(this, passedOver);
    emit packageUploadFailure();
}

void NvhPackageManager::initiateQueueUpload() {
    uploadNextSaved();
}

int NvhPackageManager::uploadNextSaved() {
    if (mSavedPackages.isEmpty()) {
        Logger(this, "INFO") << "All Files Uploaded!";
        return 0;
    }
    int passedOver = 0;
    while (!mSavedPackages.isEmpty()) {
        PackageTask task({newNumber(), mSavedPackages.takeFirst(), {}, PackageJob::Wish::Upload, {}});
        const QString reason = whyNotSendable(task.job.package);
        if (reason.isEmpty()) {
            Logger(this, "INFO") << "trying to uploading other files";
            if (!mTransfers.awaits(task.job.package))
                handOn(task);
            return 0;
        }
        Logger(this, "ERROR") << "Package Passed Over:" << reason;
        task.conclude(PackageOutcome::What::PassedOver, QString(), QString());
        report(task);
        passedOver = task.job.number;
    }
    return passedOver;
}

void NvhPackageManager::findAllSavedPackagesError() {
    Logger(this, "ERROR") << "Find All Saved Files ERROR!";
    emit packageManagerFailure();
}

void NvhPackageManager::countSavedFilesError() {
    Logger(this, "ERROR") << "Count Files Process ERROR!";
    emit packageManagerFailure();
}
