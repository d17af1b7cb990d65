// Saved packages and their upload.

#include "nvh/engine/Settings.h"
#include "nvh/packaging/ChildProcess.h"
#include "nvh/packaging/NvhPackageManager.h"

#include <HelixDash/services/Logger.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

void NvhPackageManager::startUploadingPackage(QString& pkgName) {
    if (!mSaveOnly && isUploading()) {
        if (!mWaitingUploads.contains(pkgName))
            mWaitingUploads.append(pkgName);
        return;
    }
    mPackageName = pkgName;
    if (mSaveOnly) {
        Logger(this, "INFO") << "Skipping Upload..!";
        emit fileSaved();
        return;
    }
    if (!QFile::exists(mPackageName)) {
        Logger(this, "ERROR") << "Package Name Mismatch!";
        emit packageUploadFailure();
        return;
    }
    if (!mUploadPackageProcess) {
        mUploadPackageProcess = new QProcess(this);
        connect(mUploadPackageProcess, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
                &NvhPackageManager::parsePackageUploadResponse);
        connect(mUploadPackageProcess, &QProcess::errorOccurred, this, &NvhPackageManager::packageUploadError);
        // Once more with every process, on purpose: each failure is reported once per upload so far.
        connect(this, &NvhPackageManager::packageUploadFailure, this, &NvhPackageManager::packageUploadError);
    }
    const QString command = QStringLiteral(
                                "curl -i -X POST --retry 3 --connect-timeout 10 -m 60 "
                                "-H \"Content-Type: multipart/form-data\" -F \"data=@%1\" %2")
                                .arg(mPackageName, cPackageUploadUrl.value());
    mUploading = true;
    mUploadedPackage = mPackageName;
    emit packageUploadStart();
    mUploadPackageProcess->startCommand(command);
    const double megabytes = double(QFileInfo(mUploadedPackage).size()) / 1e6;
    Logger(this, "INFO") << "Uploading:" << mUploadedPackage << QString::number(megabytes, 'g', 6) << "MB";
    Logger(this, "INFO") << "Executing:" << command;
}

void NvhPackageManager::parsePackageUploadResponse() {
    if (!mUploadPackageProcess)
        return;
    const QByteArray response = mUploadPackageProcess->readAllStandardOutput();
    const QString text = QString::fromUtf8(response);
    const auto urlAt = response.indexOf("http://");
    if (response.contains("HTTP/1.1 200 OK") && urlAt >= 0 && !wasCutOff(mUploadPackageProcess)) {
        Logger(this, "INFO") << "parsePackageUploadResponse"
                             << "Upload Success!" << text;
        emit packageUploadSuccess();
        postMetadata(response.mid(urlAt).constData());
    } else {
        Logger(this, "INFO") << "parsePackageUploadResponse"
                             << "Upload Failed!" << text;
        ++mUploadFailCount;
        giveFeedback(QStringLiteral("Package upload failed\n%1").arg(text));
        emit packageUploadFailure();
    }
    mUploading = false;
    mUploadPackageProcess->deleteLater();
    mUploadPackageProcess = nullptr;
    startWaitingUpload();
}

void NvhPackageManager::packageUploadError() {
    // A curl that could not start will not report a response either.
    if (mUploading && mUploadPackageProcess->error() == QProcess::FailedToStart) {
        mUploading = false;
        QTimer::singleShot(0, this, &NvhPackageManager::startWaitingUpload);
    }
    Logger(this, "ERROR") << "PACKAGE UPLOAD FAILED!";
    emit packageManagerFailure();
}

void NvhPackageManager::startWaitingUpload() {
    while (!mWaitingUploads.isEmpty() && !isUploading()) {
        QString next = mWaitingUploads.takeFirst();
        startUploadingPackage(next);
    }
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
    // These take care of themselves: one is not complete yet, the others are on their way.
    if (isPackaging())
        mSavedPackages.removeAll(mArchiveInWork);
    connect(this, &NvhPackageManager::metadataUploadSuccess, this, &NvhPackageManager::initiateQueueUpload,
            Qt::UniqueConnection);
    initiateQueueUpload();
}

void NvhPackageManager::initiateQueueUpload() {
    if (mSavedPackages.isEmpty()) {
        Logger(this, "INFO") << "All Files Uploaded!";
        return;
    }
    Logger(this, "INFO") << "trying to uploading other files";
    QString next = mSavedPackages.takeFirst();
    startUploadingPackage(next);
}

void NvhPackageManager::findAllSavedPackagesError() {
    Logger(this, "ERROR") << "Find All Saved Files ERROR!";
    emit packageManagerFailure();
}

void NvhPackageManager::countSavedFilesError() {
    Logger(this, "ERROR") << "Count Files Process ERROR!";
    emit packageManagerFailure();
}
