// What the view is made of, how it hears of its engine, and its states.

#include "nvh/ui/NVHAppView.h"

#include "nvh/controls/NVHModeHandler.h"
#include "nvh/tables/vsmTableController.h"
#include "nvh/ui/ModeLayout.h"
#include "nvh/ui/RunClock.h"
#include "nvh/ui/Screen.h"
#include "nvh/ui/ScreenBuilder.h"
#include "nvh/ui/SideClips.h"
#include "nvh/ui/TestTables.h"
#include "nvh/ui/VdtDownload.h"
#include "nvh/vehicle/VehicleSignals.h"

#include <HelixDash/services/Logger.h>

#include <QChildEvent>

namespace {

constexpr int kWidth = 1300;
constexpr int kHeight = 940;

}  // namespace

NVHAppView::NVHAppView(DisplayView* parent, AppMode mode)
    : DisplayView(parent),
      mWorker(mode),
      mMode(mode),
      mState(ScreenState::Ready),
      mInterruptedIn(ScreenState::Ready),
      mClock(std::make_unique<RunClock>()),
      mScreen(std::make_unique<Screen>(*this)),
      mTables(std::make_unique<TestTables>(*this, *mScreen, mode)),
      mClips(std::make_unique<SideClips>(*this, *mScreen, mWorker)),
      mDownload(std::make_unique<VdtDownload>(*this)) {
    Logger(this, "INFO") << "NVHApp " << NVHAppVersion;
    resize(kWidth, kHeight);
    move(0, 0);
    init();
    if (mMode == AppModeVdt)
        customizeForVDT(*this, *mScreen);
    else if (mMode == AppModeService)
        customizeForService(*this, *mScreen, *mTables);
}

NVHAppView::~NVHAppView() {
    // Giving the wheel back switches the bound widgets over, so it comes before anything else goes.
    mModeHandler.reset();
}

void NVHAppView::init() {
    buildScreen(*this, *mScreen);
    mTables->initVSMTable();
    connectEngine();
    LayoutCentreButtons(*mScreen);
    if (mMode != AppModeService)
        downloadVdtStatic();
    setSavedNum();
    initState();
    mScreen->saveState();
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

void NVHAppView::enter(ScreenState state) {
    // However the wait has ended, a pedal that is pressed later must not start anything.
    if (mState == ScreenState::WaitingForBrake && state != mState)
        dvDisconnect(VehicleSignals::kBrakePedal.find(), this);
    mState = state;
    if (state == ScreenState::Recorded)
        updateAdditionalButtons();
    mScreen->apply(rowOf(state).call);
    if (state != ScreenState::Ready)
        return;
    mScreen->blackenLabels();
    mClock->mMotorRpm = quint32(mWorker.getMotorRPM());
    updateAdditionalButtons();
}

void NVHAppView::initState() {
    enter(ScreenState::Ready);
}

void NVHAppView::updateAdditionalButtons() {
    logSlot(__func__);
    const NvhPackageManager& packages = mWorker.packageManager();
    const Recordings there{.ambient = packages.ambientSoundRecordingExists(),
                           .notes = packages.notesRecordingExists(),
                           .test = packages.soundRecordingExists()};
    mScreen->showClips(there);
    mScreen->apply(&ControlRow::updateAdditionalButtons, there);
}

// Uploads go on behind the driver's back while he records the next run, decides about it or waits for its package; what
// he is offered then is not theirs to take away.
void NVHAppView::returnToReady() {
    const OnOutcome rule = rowOf(mState).onOutcome;
    const int subject = mWorker.packageManager().subject();
    const bool isOwn = subject != 0 && subject == mWorker.packageInHand();
    if (rule == OnOutcome::TextsOnly || (rule == OnOutcome::OwnLeadsToReady && !isOwn))
        return;
    initState();
    updateWhenRecorderIsGone();
}

// A recorder that is still ending has not left its file yet, so that Save and Upload would stay disabled.
void NVHAppView::updateWhenRecorderIsGone() {
    mWorker.whenSettled(this, [this] {
        if (mState == ScreenState::Ready && !mScreen->isCovered())
            updateAdditionalButtons();
    });
}

void NVHAppView::shown() {
    DisplayView::shown();
    if (mModeHandler)
        mModeHandler->acquire();
    if (mTables->vsmController())
        mTables->vsmController()->updateVSMTable();
}

void NVHAppView::hidden() {
    DisplayView::hidden();
    if (mModeHandler)
        mModeHandler->yield();
}

void NVHAppView::childEvent(QChildEvent* event) {
    DisplayView::childEvent(event);
    if (event->removed())
        mScreen->forget(event->child());
}

void NVHAppView::logSlot(const char* name) const {
    Logger(this, "INFO") << name;
}
