// What becomes of a recording: saved, uploaded, discarded; the texts that follow its package; the feedback.

#include "nvh/tables/vdtTableController.h"
#include "nvh/ui/NVHAppView.h"
#include "nvh/ui/Screen.h"
#include "nvh/ui/TestTables.h"

#include <HelixDash/services/Logger.h>
#include <HelixDash/views/ButtonView.h>

void NVHAppView::saveButtonReleased() {
    logSlot(__func__);
    packResults(true, Status::Saving);
}

void NVHAppView::uploadButtonReleased() {
    logSlot(__func__);
    packResults(false, Status::Processing);
}

void NVHAppView::packResults(bool saveOnly, Status status) {
    mResultsDiscarded = false;
    mWorker.setSaveOnlyState(saveOnly);
    Logger(this, "INFO") << "Save Only State: " << (mWorker.getSaveOnlyState() ? "true" : "false");
    mScreen->setStatus(status);
    enter(ScreenState::Packing);
    if (vdtTableController* tests = mTables->vdtController()) {
        QString whyNot = mWorker.keepFiles();
        if (whyNot.isEmpty()) {
            tests->collectVdtResults();
            whyNot = tests->whyNoMarks();
        }
        if (!whyNot.isEmpty())
            mWorker.addNote(QStringLiteral("No marks\n%1").arg(whyNot));
    }
    mWorker.resultsDone();
}

void NVHAppView::discardButtonReleased() {
    logSlot(__func__);
    mResultsDiscarded = true;
    mWorker.deleteRecordedFiles();
    clearFeedbackLabel();
    mScreen->setStatus(Status::Waiting);
    initState();
}

void NVHAppView::uploadSavedButtonReleased() {
    logSlot(__func__);
    if (mWorker.packageManager().countSavedFiles() < 1) {
        setSavedNum();
        return;
    }
    enter(ScreenState::UploadingAll);
    mScreen->setUploadStatus(UploadStatus::UploadingAll);
    mWorker.packageManager().uploadAllSavedPackages();
}

void NVHAppView::setSavedNum() {
    const int saved = mWorker.packageManager().countSavedFiles();
    mScreen->mUploadAllButton->setLabel(
        (saved == 1 ? QStringLiteral(" Upload %1 File ") : QStringLiteral(" Upload %1 Files ")).arg(saved));
}

void NVHAppView::setUploadNum() {
    logSlot(__func__);
    const int uploaded = mWorker.getUploadSuccessNumber();
    if (mWorker.getSaveOnlyState())
        mScreen->setUploadStatus(UploadStatus::FileSaved);
    else if (uploaded < 1)
        mScreen->setUploadStatus(UploadStatus::UploadFailed, mWorker.packageManager().getUploadFailCount());
    else
        mScreen->setUploadStatus(UploadStatus::FilesUploaded, uploaded);
    returnToReady();
}

void NVHAppView::updateUploadAndSavedNum() {
    logSlot(__func__);
    setUploadNum();
    setSavedNum();
}

void NVHAppView::showPackagingStatus() {
    logSlot(__func__);
    mScreen->setUploadStatus(UploadStatus::PackagingFiles);
}

void NVHAppView::packageFailStatus() {
    logSlot(__func__);
    mScreen->setUploadStatus(UploadStatus::PackagingFailed);
}

void NVHAppView::endPackagingStatus() {
    logSlot(__func__);
    if (!mWorker.getSaveOnlyState())
        return;
    mScreen->setUploadStatus(UploadStatus::NothingUploaded);
    setSavedNum();
}

void NVHAppView::uploadStartStatus() {
    logSlot(__func__);
    if (!mWorker.getSaveOnlyState())
        mScreen->setUploadStatus(UploadStatus::UploadingPackage);
}

void NVHAppView::uploadFinishedStatus() {
    logSlot(__func__);
    updateUploadAndSavedNum();
}

void NVHAppView::uploadFailedStatus() {
    logSlot(__func__);
    setUploadNum();
}

void NVHAppView::metaUploadStartStatus() {
    logSlot(__func__);
    mScreen->setUploadStatus(UploadStatus::PostingFileInfo);
}

void NVHAppView::metaUploadFinishedStatus() {
    logSlot(__func__);
    updateUploadAndSavedNum();
    returnToReady();
}

void NVHAppView::metaUploadFailedStatus() {
    logSlot(__func__);
    mScreen->setUploadStatus(UploadStatus::PostingFailed);
}

void NVHAppView::fatalError() {
    logSlot(__func__);
    returnToReady();
    updateUploadAndSavedNum();
    mScreen->setUploadStatus(UploadStatus::FatalError);
}

void NVHAppView::handleError(const char* errorString) {
    Logger(this, "ERROR") << errorString;
    mScreen->setLabel(mScreen->mUploadStatusLabel, errorString, "battery/red");
}

void NVHAppView::updateFeedbackLabel(QString response) {
    Logger(this, "INFO") << "updateFeedbackLabel" << response;
    mScreen->setFeedback(response);
}

void NVHAppView::clearFeedbackLabel() {
    logSlot(__func__);
    updateFeedbackLabel(QString());
}
