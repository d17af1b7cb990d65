// Registering an uploaded package; only then it is deleted.

#include "nvh/engine/Settings.h"
#include "nvh/packaging/ChildProcess.h"
#include "nvh/packaging/NvhPackageManager.h"

#include <HelixDash/json/JSONData.h>
#include <HelixDash/json/KJson.h>
#include <HelixDash/services/Logger.h>

#include <QFile>
#include <QTimer>

void NvhPackageManager::postMetadata(const char* url) {
    Logger(this, "INFO") << "Adding File Metadata to Sonvara API...";
    JSONData record;
    record.insert(QStringLiteral("url"), QString::fromUtf8(url));
    const QString payload = QString::fromUtf8(record.serializedJSON());
    Logger(this, "INFO") << "Payload:" << payload;
    const QStringList arguments = {"-i",
                                   "-X",
                                   "POST",
                                   "--retry",
                                   "3",
                                   "--connect-timeout",
                                   "10",
                                   "-m",
                                   "20",
                                   "-H",
                                   "Content-Type: application/json",
                                   "-d",
                                   payload,
                                   cMetadataUploadUrl.value()};
    if (!mUploadMetadataProcess) {
        mUploadMetadataProcess = new QProcess(this);
        connect(mUploadMetadataProcess, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
                &NvhPackageManager::parseMetaPostResponse);
        connect(mUploadMetadataProcess, &QProcess::errorOccurred, this, &NvhPackageManager::postMetadataError);
        // Once more with every process, on purpose, as with the upload.
        connect(this, &NvhPackageManager::packageUploadFailure, this, &NvhPackageManager::postMetadataError);
    }
    mPosting = true;
    mPostedPackage = mUploadedPackage;
    emit metadataUploadStart();
    mUploadMetadataProcess->start(QStringLiteral("curl"), arguments);
    Logger(this, "INFO") << "Exec:"
                         << "curl" << bracketed(arguments);
}

void NvhPackageManager::parseMetaPostResponse() {
    if (!mUploadMetadataProcess) {
        Logger(this, "INFO") << "mUploadMetadataProcess is NULL";
        emit metadataUploadFailure();
        ++mUploadFailCount;
        return;
    }
    const QByteArray response = mUploadMetadataProcess->readAllStandardOutput();
    const QString text = QString::fromUtf8(response);
    Logger(this, "INFO") << "Sonvara API: " << text;
    mPosting = false;
    if (!response.contains("HTTP/1.1 201") || wasCutOff(mUploadMetadataProcess)) {
        Logger(this, "INFO") << "Metadata Upload Failed...!";
        ++mUploadFailCount;
        emit metadataUploadFailure();
        giveFeedback(QStringLiteral("Error uploading package to Sonvara API\n%1").arg(text));
    } else {
        Logger(this, "INFO") << "Metadata Posted!";
        if (!QFile::remove(mPostedPackage))
            Logger(this, "ERROR") << "Package Remove Failed!";
        // It may have been asked for again while it was on its way.
        mSavedPackages.removeAll(mPostedPackage);
        mWaitingUploads.removeAll(mPostedPackage);

        const auto bodyAt = response.indexOf('{');
        const QVariantMap body = bodyAt < 0 ? QVariantMap() : KJson::Parser::parse(response.mid(bodyAt)).value.toMap();
        const QString feedback = body.value(QStringLiteral("VDT Feedback")).toString();
        Logger(this, "INFO") << feedback;
        mFeedback = feedback.trimmed().isEmpty() ? QStringLiteral("No live feedback available.") : feedback;
        ++mUploadSuccessCount;
        emit metadataUploadSuccess();
        giveFeedback(mFeedback);
    }
    mUploadMetadataProcess->deleteLater();
    mUploadMetadataProcess = nullptr;
    startWaitingUpload();
}

void NvhPackageManager::postMetadataError() {
    if (mPosting && mUploadMetadataProcess->error() == QProcess::FailedToStart) {
        mPosting = false;
        QTimer::singleShot(0, this, &NvhPackageManager::startWaitingUpload);
    }
    Logger(this, "ERROR") << "POST METADATA FAILED!";
    emit packageManagerFailure();
}

void NvhPackageManager::giveFeedback(const QString& text) {
    emit updateFeedbackLabel(text);
    // An upload's answer must not hide that the package is incomplete.
    if (!mRescueFolder.isEmpty())
        emit updateFeedbackLabel(text + QLatin1Char('\n') + rescueNote());
}
