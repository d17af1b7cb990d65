// Packing: what is packed, and what becomes of the loose files. The transfers are elsewhere.

#include "nvh/packaging/NvhPackageManager.h"

#include "nvh/engine/Settings.h"
#include "nvh/packaging/CurlCall.h"
#include "nvh/packaging/PackagePipeline.h"

#include <HelixDash/services/Logger.h>
#include <HelixDash/services/SysUtils.h>

#include <QFile>

#include <utility>

NvhPackageManager::NvhPackageManager() = default;

NvhPackageManager::~NvhPackageManager() {
    blockSignals(true);
    delete mPipeline;
    delete mUploadPackageProcess;
    delete mUploadMetadataProcess;
}

QString NvhPackageManager::readVin() {
    return SysUtils::vin();
}

void NvhPackageManager::startPackageManagerProcess(QString& packageName, QStringList& files) {
    pack({newNumber(), packageName, files, mSaveOnly ? PackageJob::Wish::Keep : PackageJob::Wish::Upload, {}});
}

void NvhPackageManager::pack(const PackageJob& job) {
    Logger(this, "INFO") << "startPackageManagerProcess";
    mPackings.add(PackageTask(job));
    startNextPackaging();
}

void NvhPackageManager::startNextPackaging() {
    PackageTask* const task = mPackings.begin();
    if (!task)
        return;
    const About about(this, task->job.number);
    mPackageName = task->job.package;
    mUploadFailCount = 0;
    mUploadSuccessCount = 0;
    mPipeline = new PackagePipeline(task->job, this);
    connect(mPipeline, &PackagePipeline::failed, this, &NvhPackageManager::packageError);
    connect(mPipeline, &PackagePipeline::done, this, &NvhPackageManager::removeUnpackagedFiles);
    for (const QString& reason : mPipeline->notPacked())
        Logger(this, "ERROR") << "Not Packed:" << reason;
    if (mPipeline->fileList().isEmpty()) {
        task->conclude(PackageOutcome::What::NothingToPack, QString(), QString());
        Logger(this, "ERROR") << "File List Empty!";
        emit packagingFailure();
    }
    emit packagingStart();
    Logger(this, "INFO") << "Saving to" << mPackageName;
    Logger(this, "INFO") << "tarcmd: " << bracketed(mPipeline->tarCommand());
    mPipeline->start();
}

void NvhPackageManager::packageError() {
    const About about(this, subjectOr(mPackings));
    Logger(this, "ERROR") << "Packaging Error!";
    emit packageManagerFailure();
}

void NvhPackageManager::removeUnpackagedFiles() {
    if (!mPipeline || !mPipeline->isDone())
        return;
    PackagePipeline* const pipeline = std::exchange(mPipeline, nullptr);
    pipeline->deleteLater();
    const Settlement& result = pipeline->result();
    PackageTask task = mPackings.end();
    const About about(this, task.job.number);
    task.outcome.rescueFolder = result.rescueFolder;
    if (!result.isComplete)
        task.conclude(PackageOutcome::What::Incomplete, pipeline->culprit(), pipeline->words());
    if (!result.rescueFolder.isEmpty()) {
        Logger(this, "ERROR") << "Package incomplete, its files are kept in" << result.rescueFolder
                              << pipeline->words();
        const QString note = QStringLiteral("Packaging failed\nThe files are kept in %1").arg(result.rescueFolder);
        giveFeedback(task, note);
        // An upload's answer must not hide it.
        task.job.notes.append(note);
    }
    for (const QString& file : result.notRemoved)
        Logger(this, "ERROR") << "Cannot Remove:" << file;
    if (result.isNamed)
        handOn(task);
    else
        report(task);
    startNextPackaging();
    if (!isPackaging())
        mWhenNotPackaging.makeAll();
}

void NvhPackageManager::handOn(PackageTask& task) {
    if (task.job.wish == PackageJob::Wish::Upload) {
        mTransfers.add(task);
        startNextTransfer();
        return;
    }
    const About about(this, task.job.number);
    mPackageName = task.job.package;
    if (!QFile::exists(mPackageName))
        task.conclude(PackageOutcome::What::Missing, QString(), QString());
    Logger(this, "INFO") << "Skipping Upload..!";
    emit fileSaved();
    report(task);
}

void NvhPackageManager::giveFeedback(const PackageTask& task, const QString& text) {
    emit updateFeedbackLabel(text);
    if (!task.job.notes.isEmpty())
        emit updateFeedbackLabel(text + QLatin1Char('\n') + task.job.notes.join(QLatin1Char('\n')));
}

int NvhPackageManager::subjectOr(const PackageQueue& queue) const {
    return mSubject != 0 || !queue.isBusy() ? mSubject : queue.inWork()->job.number;
}

void NvhPackageManager::report(const PackageTask& task) {
    // One that is called may ask for more.
    const std::vector<Listener> listeners = mListeners;
    for (const Listener& listener : listeners) {
        if (listener.context)
            listener.callback(task.outcome);
    }
}

void NvhPackageManager::onOutcome(QObject* context, std::function<void(const PackageOutcome&)> callback) {
    std::erase_if(mListeners, [](const Listener& listener) { return !listener.context; });
    mListeners.push_back({context, std::move(callback)});
}

bool NvhPackageManager::isPackaging(const QString& file) const {
    return mPackings.wantsFile(file);
}

void NvhPackageManager::whenNotPackaging(QObject* context, std::function<void()> callback) {
    if (!isPackaging()) {
        callback();
        return;
    }
    mWhenNotPackaging.add(context, std::move(callback));
}

bool NvhPackageManager::ambientSoundRecordingExists() const {
    return QFile::exists(cAmbientFileName.value());
}

bool NvhPackageManager::soundRecordingExists() const {
    return QFile::exists(cRecordingFilename.value());
}

bool NvhPackageManager::notesRecordingExists() const {
    return QFile::exists(cNotesFileName.value());
}
