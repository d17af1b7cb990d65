#pragma once

#include <QList>

class BrakesAndDVControllableButton;
class ButtonView;
class DVControllable;
class DisplayView;
class DropDownPicker;
class LabelView;
class ScrollableView;
class SlideSwitch;
class SpinnerView;
class SwitchControl;
class VertSlideSwitch;

// The views of the recorder's screen, each by the name under which it is found; null where the mode does not have it.
// The screen's view owns them.
struct ScreenWidgets {
    // The side recordings.
    ButtonView* mAmbientButton = nullptr;
    SpinnerView* mAmbientSpinner = nullptr;
    ButtonView* mNotesButton = nullptr;
    SpinnerView* mNotesSpinner = nullptr;

    // One recording.
    LabelView* mStatusLabel = nullptr;
    LabelView* mUploadStatusLabel = nullptr;
    ButtonView* mResumeButton = nullptr;
    ButtonView* mStartButton = nullptr;
    BrakesAndDVControllableButton* mStopButton = nullptr;
    LabelView* mTimeLabel = nullptr;
    LabelView* mRpmCaption = nullptr;
    LabelView* mRpmLabel = nullptr;
    LabelView* mCanAlertLabel = nullptr;

    // What becomes of it.
    ButtonView* mUploadButton = nullptr;
    ButtonView* mSaveButton = nullptr;
    ButtonView* mDiscardButton = nullptr;
    ButtonView* mUploadAllButton = nullptr;
    LabelView* mFeedbackTitle = nullptr;
    ScrollableView* mFeedbackArea = nullptr;
    LabelView* mFeedbackLabel = nullptr;
    ButtonView* mClearFeedbackButton = nullptr;

    // What is chosen for it.
    LabelView* mDurationCaption = nullptr;
    VertSlideSwitch* mDurationSwitch = nullptr;
    LabelView* mTestTypeCaption = nullptr;
    SwitchControl* mTestTypeSwitch = nullptr;
    LabelView* mMicChannelCaption = nullptr;
    DropDownPicker* mMicChannelPicker = nullptr;
    LabelView* mFreqResCaption = nullptr;
    DropDownPicker* mFreqResPicker = nullptr;
    ButtonView* mClunkButton = nullptr;

    // What the vehicle works.
    SlideSwitch* mBrakeSwitch = nullptr;
    LabelView* mBrakeCaption = nullptr;
    SlideSwitch* mStwSwitch = nullptr;
    LabelView* mStwCaption = nullptr;
    QList<DVControllable*> mBoundWidgets;

    // The two tables' surroundings.
    LabelView* mVdtCaption = nullptr;
    ButtonView* mReloadVdtButton = nullptr;
    LabelView* mVsmCaption = nullptr;
    LabelView* mVsmAutoCaption = nullptr;
    SlideSwitch* mVsmSwitch = nullptr;
};
