// Registering an uploaded package; only then it is deleted.

#include "nvh/engine/Settings.h"
#include "nvh/packaging/CurlCall.h"
#include "nvh/packaging/NvhPackageManager.h"

#include <HelixDash/json/JSONData.h>
#include <HelixDash/services/Logger.h>

#include <QFile>

#include <utility>

namespace {

// The longest argument that the system hands to a program, its final zero included (MAX_ARG_STRLEN).
constexpr size_t kLongestArgument = 128 * 1024;

QByteArray payloadOf(const char* url) {
    JSONData record;
    record.insert(QStringLiteral("url"), QString::fromUtf8(url));
    return record.serializedJSON();
}

}  // namespace

bool NvhPackageManager::canPost(const char* url) {
    return qstrlen(url) < kLongestArgument && size_t(payloadOf(url).size()) < kLongestArgument;
}

void NvhPackageManager::postMetadata(const char* url) {
    if (!mTransfers.isBusy()) {
        mTransfers.add(PackageTask({newNumber(), mPackageName, {}, PackageJob::Wish::Upload, {}}));
        mTransfers.begin()->holdFile();
    }
    PackageTask& task = *mTransfers.inWork();
    const About about(this, task.job.number);
    Logger(this, "INFO") << "Adding File Metadata to Sonvara API...";
    const QByteArray payload = payloadOf(url);
    Logger(this, "INFO") << "Payload:" << ChildOutput::shown(payload);
    task.outcome.url = cMetadataUploadUrl.value();
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
                                   QString::fromUtf8(payload),
                                   task.outcome.url};
    if (!mUploadMetadataProcess) {
        mUploadMetadataProcess = new CurlCall(ServerAnswer::Wanted::Registered, this);
        connect(mUploadMetadataProcess, &CurlCall::ended, this, &NvhPackageManager::parseMetaPostResponse);
        connect(mUploadMetadataProcess, &CurlCall::failed, this, &NvhPackageManager::postMetadataError);
        connect(mUploadMetadataProcess, &CurlCall::failed, this, [this, call = mUploadMetadataProcess] {
            if (call->outcome().how == CurlOutcome::How::NotStarted)
                dropTransfer(PackageOutcome::What::NotRegistered);
        });
        // Once more with every process, on purpose, as with the upload.
        connect(this, &NvhPackageManager::packageUploadFailure, this, &NvhPackageManager::postMetadataError);
    }
    emit metadataUploadStart();
    mUploadMetadataProcess->start(arguments, mLongestCallMs);
    Logger(this, "INFO") << "Exec:"
                         << "curl" << ChildOutput::shown(bracketed(arguments).toUtf8());
}

void NvhPackageManager::parseMetaPostResponse() {
    if (!mUploadMetadataProcess) {
        Logger(this, "INFO") << "mUploadMetadataProcess is NULL";
        emit metadataUploadFailure();
        ++mUploadFailCount;
        return;
    }
    if (!mUploadMetadataProcess->hasEnded())
        return;
    CurlCall* const call = std::exchange(mUploadMetadataProcess, nullptr);
    call->deleteLater();
    const CurlOutcome& outcome = call->outcome();
    // The next one of the chain starts while the success is told.
    PackageTask task = mTransfers.end();
    const About about(this, task.job.number);
    Logger(this, "INFO") << "Sonvara API: " << outcome.text;
    if (!outcome.isAccepted()) {
        if (!outcome.defect.isEmpty())
            Logger(this, "ERROR") << "Post Not Complete:" << outcome.defect;
        Logger(this, "INFO") << "Metadata Upload Failed...!";
        ++mUploadFailCount;
        emit metadataUploadFailure();
        giveFeedback(task, QStringLiteral("Error uploading package to Sonvara API\n%1").arg(outcome.text));
        reportFailure(task, PackageOutcome::What::NotRegistered, outcome);
        return;
    }
    Logger(this, "INFO") << "Metadata Posted!";
    const std::vector<PackageTask> others = removeRegistered(task);
    const QString& feedback = outcome.answer.feedback;
    Logger(this, "INFO") << feedback;
    mFeedback = feedback.trimmed().isEmpty() ? QStringLiteral("No live feedback available.") : feedback;
    ++mUploadSuccessCount;
    emit metadataUploadSuccess();
    giveFeedback(task, mFeedback);
    task.conclude(PackageOutcome::What::Registered, QString(), outcome.answer.statusLine);
    task.outcome.feedback = mFeedback;
    report(task);
    for (PackageTask other : others) {
        other.conclude(PackageOutcome::What::Registered, QString(), outcome.answer.statusLine);
        other.outcome.url = task.outcome.url;
        other.outcome.feedback = mFeedback;
        report(other);
    }
    startNextTransfer();
}

std::vector<PackageTask> NvhPackageManager::removeRegistered(const PackageTask& task) {
    const bool isReplaced = task.isReplaced();
    if (!task.removeFile())
        Logger(this, "ERROR") << "Package Remove Failed!";
    if (isReplaced)
        return {};
    // It may have been asked for again while it was on its way.
    mSavedPackages.removeAll(task.job.package);
    return mTransfers.takeWaiting(task.job.package);
}

void NvhPackageManager::postMetadataError() {
    const About about(this, subjectOr(mTransfers));
    Logger(this, "ERROR") << "POST METADATA FAILED!";
    emit packageManagerFailure();
}
