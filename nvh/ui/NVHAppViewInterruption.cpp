// The steering wheel's controls, and the screen frozen while somebody else has them.

#include "nvh/controls/BrakesAndDVControllableButton.h"
#include "nvh/controls/NVHModeHandler.h"
#include "nvh/controls/STWControlsPopup.h"
#include "nvh/ui/NVHAppView.h"

#include <HelixDash/views/SlideSwitch.h>

#include <QChildEvent>

void NVHAppView::saveState() {
    for (const DisplayView* child : childViews()) {
        mSavedEnabled[child] = child->isEnabled();
        mSavedVisible[child] = child->isVisible();
    }
}

void NVHAppView::restoreState() {
    for (DisplayView* child : childViews()) {
        child->enable(mSavedEnabled.value(child, false));
        child->show(mSavedVisible.value(child, false));
    }
}

// A view that is made later may get the address of one that is gone, and must not get its state.
void NVHAppView::childEvent(QChildEvent* event) {
    DisplayView::childEvent(event);
    if (!event->removed())
        return;
    mSavedEnabled.remove(event->child());
    mSavedVisible.remove(event->child());
}

void NVHAppView::disableEverything() {
    for (DisplayView* child : childViews())
        child->enable(false);
}

void NVHAppView::interrupt() {
    // A second interruption before the driver has resumed must not take the frozen screen for his.
    if (!mResumeButton->isVisible())
        saveState();
    disableEverything();
    mStartButton->show(false);
    mStopButton->show(false);
    mResumeButton->show(true);
    mResumeButton->enable(true);
    // What ends meanwhile may show Start again; it stays covered.
    mResumeButton->raise();
}

void NVHAppView::resumeButtonAction() {
    logSlot(__func__);
    if (mModeHandler)
        mModeHandler->acquire();
    mResumeButton->enable(false);
    mResumeButton->show(false);
    restoreState();
}

void NVHAppView::stwControlsToggledByUser() {
    logSlot(__func__);
    mModeHandler.reset();
    if (mStwSwitch->position() != 1)
        return;
    new STWControlsPopup(this);
    mModeHandler = std::make_shared<NVHModeHandler>(*this);
}

void NVHAppView::stwControlsAcquired() {
    for (DVControllable* widget : mBoundWidgets)
        widget->enableDVControl();
}

void NVHAppView::stwControlsYielded() {
    for (DVControllable* widget : mBoundWidgets)
        widget->disableDVControl();
}

void NVHAppView::stwControlsLost() {
    interrupt();
}
