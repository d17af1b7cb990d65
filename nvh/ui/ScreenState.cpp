#include "nvh/ui/ScreenState.h"

#include "nvh/controls/BrakesAndDVControllableButton.h"
#include "nvh/controls/VertSlideSwitch.h"

#include <HelixDash/views/DropDownPicker.h>

#include <algorithm>

namespace {

using enum Cell;

template <auto Member>
DisplayView* viewOf(const ScreenWidgets& widgets) {
    return widgets.*Member;
}

// Save and Upload.
constexpr ControlRow keeping(DisplayView* (*view)(const ScreenWidgets&)) {
    return {.view = view,
            .initState = Off,
            .stateTwo = Off,
            .stateThree = On,
            .disableAllInteractions = Off,
            .updateAdditionalButtons = IfTest};
}

// The side recordings' buttons; a mode customisation may have removed them.
constexpr ControlRow clip(DisplayView* (*view)(const ScreenWidgets&), Cell ambientTouched, Cell noteRuns) {
    return {.view = view,
            .stateTwo = Off,
            .disableAllInteractions = Off,
            .updateAdditionalButtons = On,
            .ambientTouched = ambientTouched,
            .noteRuns = noteRuns};
}

// Reload and Clear Feedback.
constexpr ControlRow aside(DisplayView* (*view)(const ScreenWidgets&)) {
    return {.view = view, .initState = On, .disableAllInteractions = Off};
}

// What is chosen for a run: setSliders().
constexpr ControlRow choice(DisplayView* (*view)(const ScreenWidgets&)) {
    return {.view = view, .initState = On, .stateTwo = Off, .stateThree = Off, .disableAllInteractions = Off};
}

constexpr ControlRow kControls[] = {
    {.view = viewOf<&ScreenWidgets::mStartButton>,
     .initState = Shown,
     .stateTwo = Hidden,
     .stateThree = Off,
     .disableAllInteractions = Off,
     .stopOnly = Hidden,
     .interrupt = Hidden},
    {.view = viewOf<&ScreenWidgets::mStopButton>,
     .initState = Hidden,
     .stateTwo = Shown,
     .stateThree = Off,
     .disableAllInteractions = Off,
     .stopOnly = Shown,
     .timed = Off,
     .noteRuns = Off,
     .interrupt = Hidden},
    clip(viewOf<&ScreenWidgets::mAmbientButton>, On, Unchanged),
    clip(viewOf<&ScreenWidgets::mNotesButton>, Unchanged, On),
    keeping(viewOf<&ScreenWidgets::mUploadButton>),
    keeping(viewOf<&ScreenWidgets::mSaveButton>),
    {.view = viewOf<&ScreenWidgets::mDiscardButton>,
     .initState = Off,
     .stateTwo = Off,
     .stateThree = On,
     .disableAllInteractions = Off,
     .updateAdditionalButtons = IfAny},
    {.view = viewOf<&ScreenWidgets::mUploadAllButton>,
     .initState = On,
     .stateTwo = Off,
     .stateThree = Off,
     .disableAllInteractions = Off},
    aside(viewOf<&ScreenWidgets::mReloadVdtButton>),
    aside(viewOf<&ScreenWidgets::mClearFeedbackButton>),
    choice(viewOf<&ScreenWidgets::mTestTypeSwitch>),
    choice(viewOf<&ScreenWidgets::mDurationSwitch>),
    choice(viewOf<&ScreenWidgets::mClunkButton>),
    choice(viewOf<&ScreenWidgets::mMicChannelPicker>),
    choice(viewOf<&ScreenWidgets::mFreqResPicker>),
    {.view = viewOf<&ScreenWidgets::mResumeButton>, .interrupt = Shown, .restoreState = Hidden},
};

constexpr ControlRow kOtherView{};

constexpr StateRow kStates[] = {
    {ScreenState::Ready, &ControlRow::initState, OnOutcome::LeadsToReady, true},
    {ScreenState::Waiting, &ControlRow::disableAllInteractions, OnOutcome::TextsOnly, false},
    {ScreenState::WaitingForBrake, &ControlRow::stopOnly, OnOutcome::TextsOnly, false},
    {ScreenState::Recording, &ControlRow::stateTwo, OnOutcome::TextsOnly, false},
    {ScreenState::Recorded, &ControlRow::stateThree, OnOutcome::TextsOnly, true},
    {ScreenState::Clip, &ControlRow::disableAllInteractions, OnOutcome::TextsOnly, false},
    {ScreenState::Packing, &ControlRow::disableAllInteractions, OnOutcome::OwnLeadsToReady, false},
    {ScreenState::UploadingAll, &ControlRow::disableAllInteractions, OnOutcome::LeadsToReady, false},
    {ScreenState::Resumed, &ControlRow::restoreState, OnOutcome::LeadsToReady, true},
};

}  // namespace

std::span<const ControlRow> controlRows() {
    return kControls;
}

const ControlRow& rowOf(const DisplayView* view, const ScreenWidgets& widgets) {
    const auto* row = std::find_if(std::begin(kControls), std::end(kControls),
                                   [&](const ControlRow& control) { return control.view(widgets) == view; });
    return row == std::end(kControls) ? kOtherView : *row;
}

const StateRow& rowOf(ScreenState state) {
    return *std::find_if(std::begin(kStates), std::end(kStates),
                         [state](const StateRow& row) { return row.state == state; });
}
