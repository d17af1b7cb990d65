// What the view is made of, and how it hears of its engine.

#include "nvh/ui/NVHAppView.h"

#include "nvh/controls/NVHModeHandler.h"
#include "nvh/packaging/ChildProcess.h"
#include "nvh/tables/vsmTableController.h"

#include <HelixDash/services/Logger.h>

namespace {

constexpr int kWidth = 1300;
constexpr int kHeight = 940;

}  // namespace

NVHAppView::NVHAppView(DisplayView* parent, AppMode mode) : DisplayView(parent), mWorker(mode), mMode(mode) {
    Logger(this, "INFO") << "NVHApp " << NVHAppVersion;
    resize(kWidth, kHeight);
    move(0, 0);
    init();
    if (mMode == AppModeVdt)
        customizeForVDT();
    else if (mMode == AppModeService)
        customizeForService();
}

NVHAppView::~NVHAppView() {
    // Giving the wheel back switches the bound widgets over, so it comes before anything else goes.
    mModeHandler.reset();
    endChildProcess(mVdtStaticDownloadProcess);
}

void NVHAppView::init() {
    buildWidgets();
    placeSwitches();
    connectSwitches();
    initVSMTable();
    connectEngine();
    LayoutCentreButtons();
    if (mMode != AppModeService)
        downloadVdtStatic();
    setSavedNum();
    initState();
    saveState();
}

void NVHAppView::connectEngine() {
    NvhPackageManager* packages = &mWorker.packageManager();
    connect(&mWorker, &NVHWorker::finished, this, &NVHAppView::resultsReady);
    connect(&mWorker, &NVHWorker::startUpdating, this, &NVHAppView::startUpdating);
    connect(&mWorker, &NVHWorker::endRecording, this, &NVHAppView::actuallyStop);
    connect(packages, &NvhPackageManager::fileSaved, this, &NVHAppView::updateUploadAndSavedNum);
    connect(packages, &NvhPackageManager::packagingStart, this, &NVHAppView::showPackagingStatus);
    connect(packages, &NvhPackageManager::packagingSuccess, this, &NVHAppView::endPackagingStatus);
    connect(packages, &NvhPackageManager::packagingFailure, this, &NVHAppView::packageFailStatus);
    connect(packages, &NvhPackageManager::packageUploadStart, this, &NVHAppView::uploadStartStatus);
    connect(packages, &NvhPackageManager::packageUploadSuccess, this, &NVHAppView::uploadFinishedStatus);
    connect(packages, &NvhPackageManager::packageUploadFailure, this, &NVHAppView::uploadFailedStatus);
    connect(packages, &NvhPackageManager::metadataUploadStart, this, &NVHAppView::metaUploadStartStatus);
    connect(packages, &NvhPackageManager::metadataUploadSuccess, this, &NVHAppView::metaUploadFinishedStatus);
    connect(packages, &NvhPackageManager::metadataUploadFailure, this, &NVHAppView::metaUploadFailedStatus);
    connect(packages, &NvhPackageManager::packageManagerFailure, this, &NVHAppView::fatalError);
    connect(&mWorker, &NVHWorker::ackFailed_Relay, this, &NVHAppView::noCanDataAlert);
    // Once more on purpose: a failure is reported twice.
    connect(packages, &NvhPackageManager::packageManagerFailure, this, &NVHAppView::fatalError);
    connect(&mWorker, &NVHWorker::updateFeedbackLabel, this, &NVHAppView::updateFeedbackLabel);
    connect(packages, &NvhPackageManager::updateFeedbackLabel, this, &NVHAppView::updateFeedbackLabel);
}

void NVHAppView::shown() {
    DisplayView::shown();
    if (mModeHandler)
        mModeHandler->acquire();
    if (mVsmController)
        mVsmController->updateVSMTable();
}

void NVHAppView::hidden() {
    DisplayView::hidden();
    if (mModeHandler)
        mModeHandler->yield();
}

void NVHAppView::logSlot(const char* name) const {
    Logger(this, "INFO") << name;
}
