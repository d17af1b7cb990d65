// What the screen is made of: every widget with its text and place.

#include "nvh/ui/LayoutRows.h"

#include "nvh/ui/NVHAppView.h"

#include <HelixDash/views/ButtonView.h>
#include <HelixDash/views/ScrollableView.h>

namespace {

const char* const kLabel = "SettingsMainLabel";
const char* const kCaption = "SettingsMainLabel; Weight:semibold";
const char* const kButton = "SettingsPushButton";
const char* const kLargeButton = "ButtonType:large; Width: 240";
const char* const kPickerRow = "SettingsMainLayout";

constexpr const char* kDurations[] = {"60 Sec", "45 sec", "30  Sec", "20 Sec", "15 Sec", "10 Sec", "5 Sec", "Manual"};
constexpr const char* kTestTypes[] = {"App Test", "Service", "Brake Squeal", "Mic Test",     "BSR",
                                      "Regen",    "WOT",     "65 MPH",       "42-43 Steady", "35 MPH"};
constexpr const char* kVdtTestTypes[] = {"65 MPH", "35 MPH"};
constexpr const char* kMicChannels[] = {"Right", "Left", "Sum (Avg.)"};
constexpr const char* kFreqResolutions[] = {"2.7kHz", "5.4kHz", "10.7kHz", "21.5kHz"};
constexpr const char* kOffOn[] = {"OFF", "ON"};

// The centre row's frames stand 8 px apart, and the last one ends where Start does.
constexpr int kCentreButtonWidth = 162;
constexpr int kLastCentreButtonWidth = 170;
constexpr int kOnOffWidth = 116;

template <auto Member>
DisplayView* viewOf(const ScreenWidgets& widgets) {
    return widgets.*Member;
}

DisplayView* feedbackContent(const ScreenWidgets& widgets) {
    return widgets.mFeedbackArea->contentView();
}

constexpr LayoutRow kRows[] = {
    {.name = "mAmbientButton",
     .member = &ScreenWidgets::mAmbientButton,
     .text = "Record Ambient",
     .style = kLargeButton,
     .x = 360,
     .y = 30,
     .released = &NVHAppView::ambientNoiseButtonReleased},
    {.name = "mAmbientSpinner",
     .member = &ScreenWidgets::mAmbientSpinner,
     .x = 180,
     .y = 30,
     .isShown = false,
     .parent = viewOf<&ScreenWidgets::mAmbientButton>},
    {.name = "mNotesButton",
     .member = &ScreenWidgets::mNotesButton,
     .text = "Record Notes",
     .style = kLargeButton,
     .x = 580,
     .y = 30,
     .released = &NVHAppView::notesRecordButtonReleased},
    {.name = "mNotesSpinner",
     .member = &ScreenWidgets::mNotesSpinner,
     .x = 180,
     .y = 30,
     .isShown = false,
     .parent = viewOf<&ScreenWidgets::mNotesButton>},
    {.name = "mStatusLabel",
     .member = &ScreenWidgets::mStatusLabel,
     .text = "Waiting",
     .style = kCaption,
     .x = 445,
     .y = 130},
    {.name = "mUploadStatusLabel",
     .member = &ScreenWidgets::mUploadStatusLabel,
     .text = "| Files Uploaded: -",
     .style = kLabel,
     .x = 555,
     .y = 130},
    {.name = "mResumeButton",
     .member = &ScreenWidgets::mResumeButton,
     .text = "Touch to resume NVH App",
     .style = "ButtonType:normal; FontSize:32",
     .isShown = false,
     .isEnabled = false,
     .released = &NVHAppView::resumeButtonAction},
    {.name = "mStartButton",
     .member = &ScreenWidgets::mStartButton,
     .text = "Start",
     .style = "ButtonType:primary",
     .pressedBy = &VehicleSignals::kWheelMiddle,
     .released = &NVHAppView::startButtonAction},
    {.name = "mStopButton",
     .member = &ScreenWidgets::mStopButton,
     .text = "Stop",
     .style = "ButtonType:stop",
     .pressedBy = &VehicleSignals::kWheelMiddle,
     .released = &NVHAppView::stopButtonAction},
    {.name = "mRpmCaption",
     .member = &ScreenWidgets::mRpmCaption,
     .text = "RPM: ",
     .style = kLabel,
     .x = 600,
     .y = 165,
     .height = 40},
    {.name = "mRpmLabel", .member = &ScreenWidgets::mRpmLabel, .style = kLabel, .x = 670, .y = 165},
    {.name = "mCanAlertLabel",
     .member = &ScreenWidgets::mCanAlertLabel,
     .text = "-",
     .style = kLabel,
     .x = 860,
     .y = 180,
     .isShown = false},
    {.name = "mUploadButton",
     .member = &ScreenWidgets::mUploadButton,
     .text = "Upload",
     .style = kButton,
     .width = kCentreButtonWidth,
     .isEnabled = false,
     .pressedBy = &VehicleSignals::kWheelTop,
     .released = &NVHAppView::uploadButtonReleased},
    {.name = "mSaveButton",
     .member = &ScreenWidgets::mSaveButton,
     .text = "Save",
     .style = kButton,
     .width = kCentreButtonWidth,
     .isEnabled = false,
     .pressedBy = &VehicleSignals::kWheelMiddle,
     .released = &NVHAppView::saveButtonReleased},
    {.name = "mDiscardButton",
     .member = &ScreenWidgets::mDiscardButton,
     .text = "Discard",
     .style = kButton,
     .width = kLastCentreButtonWidth,
     .isEnabled = false,
     .pressedBy = &VehicleSignals::kWheelBottom,
     .released = &NVHAppView::discardButtonReleased},
    {.name = "mUploadAllButton",
     .member = &ScreenWidgets::mUploadAllButton,
     .text = "Upload All",
     .style = kButton,
     .x = 15,
     .y = 535,
     .height = 60,
     .released = &NVHAppView::uploadSavedButtonReleased},
    {.name = "mReloadVdtButton",
     .member = &ScreenWidgets::mReloadVdtButton,
     .text = "Reload VDT Static",
     .style = kButton,
     .x = 15,
     .y = 600,
     .isShown = false,
     .released = &NVHAppView::downloadVdtStatic},
    {.name = "mClearFeedbackButton",
     .member = &ScreenWidgets::mClearFeedbackButton,
     .text = "Clear Feedback",
     .style = kButton,
     .x = 15,
     .y = 675,
     .isShown = false,
     .released = &NVHAppView::clearFeedbackLabel},
    {.name = "mDurationCaption",
     .member = &ScreenWidgets::mDurationCaption,
     .text = "Duration",
     .style = kCaption,
     .x = 40,
     .y = 15},
    {.name = "mDurationSwitch", .member = &ScreenWidgets::mDurationSwitch, .items = kDurations, .x = 25, .y = 25},
    {.name = "mTestTypeCaption",
     .member = &ScreenWidgets::mTestTypeCaption,
     .text = "Test Type",
     .style = kCaption,
     .x = 210,
     .y = 15},
    {.name = "mTestTypeSwitch",
     .member = &ScreenWidgets::mTestTypeSwitch,
     .items = kTestTypes,
     .x = 200,
     .y = 25,
     .movedBy = &VehicleSignals::kWheelScroll},
    {.name = "mBrakeSwitch", .member = &ScreenWidgets::mBrakeSwitch, .items = kOffOn, .width = kOnOffWidth},
    {.name = "mBrakeCaption",
     .member = &ScreenWidgets::mBrakeCaption,
     .text = "Braking Stops\nRecording",
     .style = kCaption},
    {.name = "mStwSwitch", .member = &ScreenWidgets::mStwSwitch, .items = kOffOn, .width = kOnOffWidth},
    {.name = "mStwCaption",
     .member = &ScreenWidgets::mStwCaption,
     .text = "Steering Wheel\nControls",
     .style = kCaption},
    {.name = "mTimeLabel", .member = &ScreenWidgets::mTimeLabel, .text = "0 s", .style = kLabel, .x = 475, .y = 165},
    {.name = "mMicChannelCaption",
     .member = &ScreenWidgets::mMicChannelCaption,
     .text = "Mic Channel",
     .style = kLabel,
     .x = 420,
     .y = 380,
     .isShown = false},
    {.name = "mFreqResCaption",
     .member = &ScreenWidgets::mFreqResCaption,
     .text = "Freq. Res.",
     .style = kLabel,
     .x = 670,
     .y = 380,
     .isShown = false},
    {.name = "mFeedbackArea", .member = &ScreenWidgets::mFeedbackArea, .x = 850, .y = 640, .width = 425, .height = 280},
    {.name = "mFeedbackLabel",
     .member = &ScreenWidgets::mFeedbackLabel,
     .style = "Alignment:wordwrap|center|top; Padding:12",
     .parent = feedbackContent},
    {.name = "mMicChannelPicker",
     .member = &ScreenWidgets::mMicChannelPicker,
     .items = kMicChannels,
     .style = kPickerRow,
     .x = 350,
     .y = 400,
     .width = 300,
     .height = 60,
     .isShown = false},
    {.name = "mFreqResPicker",
     .member = &ScreenWidgets::mFreqResPicker,
     .items = kFreqResolutions,
     .style = kPickerRow,
     .x = 620,
     .y = 400,
     .width = 220,
     .height = 60,
     .isShown = false},
    {.name = "mClunkButton",
     .member = &ScreenWidgets::mClunkButton,
     .text = "Anti Torque Reversal On",
     .style = kButton,
     .x = 15,
     .y = 600,
     .width = 320,
     .height = 60,
     .isShown = false,
     .pressedBy = &VehicleSignals::kAntiClunkOff,
     .isToggle = true,
     .released = &NVHAppView::clunkButtonToggled},
    {.name = "mVdtCaption",
     .member = &ScreenWidgets::mVdtCaption,
     .text = "VDT Static",
     .style = kCaption,
     .x = 1000,
     .y = 15},
    {.name = "mVsmCaption",
     .member = &ScreenWidgets::mVsmCaption,
     .text = "Vehicle Status Monitor",
     .style = kCaption,
     .x = 460,
     .y = 540},
    {.name = "mVsmAutoCaption",
     .member = &ScreenWidgets::mVsmAutoCaption,
     .text = "Automatic \nAudio/HVAC Off",
     .style = kCaption,
     .isShown = false},
    {.name = "mVsmSwitch",
     .member = &ScreenWidgets::mVsmSwitch,
     .items = kOffOn,
     .width = kOnOffWidth,
     .isShown = false},
    {.name = "mFeedbackTitle",
     .member = &ScreenWidgets::mFeedbackTitle,
     .text = "Orvanta Feedback",
     .style = kCaption,
     .x = 980,
     .y = 600},
};

constexpr LayoutRow kHorizontalTestTypes = {.name = "mTestTypeSwitch",
                                            .member = &ScreenWidgets::mTestTypeSwitch,
                                            .items = kVdtTestTypes,
                                            .movedBy = &VehicleSignals::kWheelScroll,
                                            .isHorizontal = true};

}  // namespace

QStringList LayoutRow::Items::list() const {
    QStringList items;
    for (const char* text : texts)
        items.append(QString::fromLatin1(text));
    return items;
}

std::span<const LayoutRow> layoutRows() {
    return kRows;
}

const LayoutRow& horizontalTestTypeRow() {
    return kHorizontalTestTypes;
}
