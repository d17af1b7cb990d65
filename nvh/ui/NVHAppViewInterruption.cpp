// The steering wheel's controls, and the screen frozen while somebody else has them.

#include "nvh/controls/NVHModeHandler.h"
#include "nvh/controls/STWControlsPopup.h"
#include "nvh/ui/NVHAppView.h"
#include "nvh/ui/Screen.h"
#include "nvh/ui/TestTables.h"

#include <HelixDash/views/SlideSwitch.h>

void NVHAppView::interrupt() {
    // A second interruption before the driver has resumed must not take the frozen screen for his.
    if (!mScreen->isCovered()) {
        mScreen->saveState();
        mInterruptedIn = mState;
    }
    mScreen->interrupt();
}

void NVHAppView::resumeButtonAction() {
    logSlot(__func__);
    if (mModeHandler) {
        mModeHandler->acquire();
        // Where the wheel has been given back to the recorder meanwhile there was nothing to acquire.
        mScreen->followWheel(true);
    }
    mScreen->restoreState();
    if (mState != mInterruptedIn && rowOf(mState).isAtRest)
        enter(ScreenState::Resumed);
    if (mTables->isVdtTableHidden())
        updateFeedbackLabel(
            QStringLiteral("VDT Static was loaded while the screen was covered. Change the mode to see it."));
}

void NVHAppView::stwControlsToggledByUser() {
    logSlot(__func__);
    mModeHandler.reset();
    if (mScreen->mStwSwitch->position() != 1)
        return;
    new STWControlsPopup(this);
    mModeHandler = std::make_shared<NVHModeHandler>(*this);
}

void NVHAppView::stwControlsAcquired() {
    mScreen->followWheel(true);
}

void NVHAppView::stwControlsYielded() {
    mScreen->followWheel(false);
}

void NVHAppView::stwControlsLost() {
    mScreen->followWheel(false);
    interrupt();
}
