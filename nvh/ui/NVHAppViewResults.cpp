// What becomes of a recording: saved, uploaded, discarded; the texts that follow its package; the feedback.

#include "nvh/tables/vdtTableController.h"
#include "nvh/ui/NVHAppView.h"

#include <HelixDash/services/Logger.h>
#include <HelixDash/views/ButtonView.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/ScrollableView.h>

void NVHAppView::saveButtonReleased() {
    logSlot(__func__);
    packResults(true, "Saving..", "battery/blue");
}

void NVHAppView::uploadButtonReleased() {
    logSlot(__func__);
    packResults(false, "Processing ", "black");
}

void NVHAppView::packResults(bool saveOnly, const char* status, const char* color) {
    mResultsDiscarded = false;
    mWorker.setSaveOnlyState(saveOnly);
    Logger(this, "INFO") << "Save Only State: " << (mWorker.getSaveOnlyState() ? "true" : "false");
    setStatus(status, color, 410);
    disableAllInteractions();
    if (mVdtController)
        mVdtController->collectVdtResults();
    mWorker.resultsDone();
}

void NVHAppView::discardButtonReleased() {
    logSlot(__func__);
    mResultsDiscarded = true;
    mWorker.deleteRecordedFiles();
    clearFeedbackLabel();
    setStatus("Waiting", "black", 445);
    initState();
}

void NVHAppView::uploadSavedButtonReleased() {
    logSlot(__func__);
    if (mWorker.packageManager().countSavedFiles() < 1) {
        setSavedNum();
        return;
    }
    disableAllInteractions();
    setLabel(mUploadStatusLabel, "| Uploading..", "battery/red");
    mWorker.packageManager().uploadAllSavedPackages();
}

void NVHAppView::setSavedNum() {
    const int saved = mWorker.packageManager().countSavedFiles();
    mUploadAllButton->setLabel(
        (saved == 1 ? QStringLiteral(" Upload %1 File ") : QStringLiteral(" Upload %1 Files ")).arg(saved));
}

void NVHAppView::setUploadNum() {
    logSlot(__func__);
    const int uploaded = mWorker.getUploadSuccessNumber();
    QString text;
    if (mWorker.getSaveOnlyState())
        text = QStringLiteral("| File Saved!");
    else if (uploaded < 1)
        text = QStringLiteral("| Upload Failed: %1").arg(mWorker.packageManager().getUploadFailCount());
    else
        text = QStringLiteral("| Files Uploaded: %1").arg(uploaded);
    setLabel(mUploadStatusLabel, qPrintable(text), "black");
    returnToReady();
}

void NVHAppView::updateUploadAndSavedNum() {
    logSlot(__func__);
    setUploadNum();
    setSavedNum();
}

// Every outcome of an upload leads here, and only here. Uploads go on behind the driver's back while he records the
// next run, waits for the brake or speaks a note; what he operates then, the Stop button first of all, is not theirs.
void NVHAppView::returnToReady() {
    if (recordingHasControls())
        return;
    initState();
    updateWhenRecorderIsGone();
}

// A recorder that is still ending has not left its file yet, so that Save and Upload would stay disabled.
void NVHAppView::updateWhenRecorderIsGone() {
    mWorker.whenSettled(this, [this] {
        if (mStartButton->isEnabled() && !recordingHasControls())
            updateAdditionalButtons();
    });
}

void NVHAppView::showPackagingStatus() {
    logSlot(__func__);
    setLabel(mUploadStatusLabel, "| Packaging Files...", "battery/blue");
}

void NVHAppView::packageFailStatus() {
    logSlot(__func__);
    setLabel(mUploadStatusLabel, "| Packaging Failed..", "battery/blue");
}

void NVHAppView::endPackagingStatus() {
    logSlot(__func__);
    if (!mWorker.getSaveOnlyState())
        return;
    setLabel(mUploadStatusLabel, "| Files Uploaded: -", "black");
    setSavedNum();
}

void NVHAppView::uploadStartStatus() {
    logSlot(__func__);
    if (!mWorker.getSaveOnlyState())
        setLabel(mUploadStatusLabel, "| Uploading Pkg...", "battery/blue");
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
    setLabel(mUploadStatusLabel, "| Posting File Info!", "battery/blue");
}

void NVHAppView::metaUploadFinishedStatus() {
    logSlot(__func__);
    updateUploadAndSavedNum();
    returnToReady();
}

void NVHAppView::metaUploadFailedStatus() {
    logSlot(__func__);
    setLabel(mUploadStatusLabel, "| Posting Failed!", "battery/black");
}

void NVHAppView::fatalError() {
    logSlot(__func__);
    returnToReady();
    updateUploadAndSavedNum();
    setLabel(mUploadStatusLabel, "| Fatal Error!", "battery/red");
}

void NVHAppView::handleError(const char* errorString) {
    Logger(this, "ERROR") << errorString;
    setLabel(mUploadStatusLabel, errorString, "battery/red");
}

void NVHAppView::updateFeedbackLabel(QString response) {
    Logger(this, "INFO") << "updateFeedbackLabel" << response;
    mFeedbackLabel->setText(QString::fromLatin1(response.toLatin1()));
    mFeedbackLabel->setSkinColor("black");
    fitFeedback();
    mFeedbackArea->scrollTo(0);
}

void NVHAppView::clearFeedbackLabel() {
    logSlot(__func__);
    updateFeedbackLabel(QString());
}
