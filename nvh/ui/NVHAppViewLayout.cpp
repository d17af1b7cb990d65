// The screen: every widget with its text and place, and how the modes reshape it.

#include "nvh/controls/BrakesAndDVControllableButton.h"
#include "nvh/controls/VertSlideSwitch.h"
#include "nvh/tables/vdtTableController.h"
#include "nvh/ui/NVHAppView.h"

#include <HelixDash/tables/TableView.h>
#include <HelixDash/values/DataValueManager.h>
#include <HelixDash/views/DropDownPicker.h>
#include <HelixDash/views/FontManager.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/ScrollableView.h>
#include <HelixDash/views/SlideSwitch.h>
#include <HelixDash/views/SpinnerView.h>
#include <HelixDash/views/ViewFactory.h>

namespace {

const char* const kLabel = "SettingsMainLabel";
const char* const kCaption = "SettingsMainLabel; Weight:semibold";
const char* const kButton = "SettingsPushButton";
const char* const kLargeButton = "ButtonType:large; Width: 240";
const char* const kPickerRow = "SettingsMainLayout";

constexpr const char* kDurations[] = {"60 Sec", "45 sec", "30  Sec", "20 Sec", "15 Sec", "10 Sec", "5 Sec", "Manual"};
constexpr const char* kTestTypes[] = {"App Test", "Service", "Brake Squeal", "Mic Test",     "BSR",
                                      "Regen",    "WOT",     "65 MPH",       "42-43 Steady", "35 MPH"};
constexpr const char* kMicChannels[] = {"Right", "Left", "Sum (Avg.)"};
constexpr const char* kFreqResolutions[] = {"2.7kHz", "5.4kHz", "10.7kHz", "21.5kHz"};
constexpr const char* kOffOn[] = {"OFF", "ON"};

constexpr int kSpinnerKind = 3;
constexpr int kFeedbackPx = 25;
constexpr int kCentreLeft = 360;
constexpr int kCentreWidth = 470;
constexpr int kCentrePitch = 150;  // from one button of the centre row to the next
// Their frames stand 8 px apart, and the last one ends where Start does.
constexpr int kCentreButtonWidth = 162;
constexpr int kLastCentreButtonWidth = 170;
constexpr int kOnOffWidth = 116;
constexpr int kTitleTop = 15;
// The upload-status text ends where the centre column does.
constexpr int kUploadStatusWidth = 265;

template <typename View>
void removeView(View*& view) {
    delete view;
    view = nullptr;
}

}  // namespace

// What init() builds, as a table of rows; it has access to the view's members.
struct NVHAppView::Layout {
    struct Row;
    using Make = DisplayView* (*)(NVHAppView&, const Row&);
    using Slot = void (NVHAppView::*)();

    struct Items {
        const char* const* first = nullptr;
        int count = 0;

        Items() = default;
        template <int size>
        Items(const char* const (&items)[size]) : first(items), count(size) {}

        QStringList list() const {
            QStringList texts;
            for (int item = 0; item < count; ++item)
                texts.append(QString::fromLatin1(first[item]));
            return texts;
        }
    };

    struct Row {
        const char* name;
        Make make;
        const char* text = "";
        Items items = {};
        const char* style = "";
        int x = 0;
        int y = 0;
        int width = 0;  // 0: as the style or the text wants it
        int height = 0;
        bool isShown = true;
        bool isEnabled = true;
        const char* boundTo = nullptr;  // data value
        Slot released = nullptr;
    };

    static const Row kRows[];

    static QString textOf(const Row& row) { return QString::fromLatin1(row.text); }

    template <typename DV>
    static DV* valueOf(const Row& row) {
        return DataValueManager::instance().find<DV>(QLatin1String(row.boundTo));
    }

    template <auto Member>
    static DisplayView* label(NVHAppView& view, const Row& row) {
        return view.*Member = new LabelView(textOf(row), &view);
    }

    template <auto Member>
    static DisplayView* button(NVHAppView& view, const Row& row) {
        return view.*Member = new ButtonView(textOf(row), &view);
    }

    template <auto Member>
    static DisplayView* boundButton(NVHAppView& view, const Row& row) {
        auto* button =
            new DVControllableWidget<BoolDataValue, ButtonView>(valueOf<BoolDataValue>(row), textOf(row), &view);
        view.mBoundWidgets.append(button);
        return view.*Member = button;
    }

    static DisplayView* stopButton(NVHAppView& view, const Row& row) {
        auto* button = new BrakesAndDVControllableButton(valueOf<BoolDataValue>(row), textOf(row), &view);
        button->ignoreBrakesWhen([&view] { return view.isBrakeSquealTest(); });
        view.mBoundWidgets.append(button);
        return view.mStopButton = button;
    }

    static DisplayView* clunkButton(NVHAppView& view, const Row& row) {
        DisplayView* button = boundButton<&NVHAppView::mClunkButton>(view, row);
        view.mClunkButton->setToggle(true);
        return button;
    }

    template <auto Member, auto Button>
    static DisplayView* spinner(NVHAppView& view, const Row&) {
        return view.*Member = new SpinnerView(view.*Button, kSpinnerKind);
    }

    template <auto Member>
    static DisplayView* onOffSwitch(NVHAppView& view, const Row& row) {
        return view.*Member = new SlideSwitch(&view, row.items.list());
    }

    static DisplayView* durationSwitch(NVHAppView& view, const Row& row) {
        return view.mDurationSwitch = new VertSlideSwitch(&view, row.items.list());
    }

    template <typename Switch>
    static DisplayView* testTypeSwitch(NVHAppView& view, const Row& row) {
        auto* testTypes =
            new DVControllableWidget<IntDataValue, Switch>(valueOf<IntDataValue>(row), &view, row.items.list());
        view.mBoundWidgets.append(testTypes);
        return view.mTestTypeSwitch = testTypes;
    }

    template <auto Member>
    static DisplayView* picker(NVHAppView& view, const Row& row) {
        auto* picker = new DropDownPicker(&view, row.width);
        picker->setChoices(row.items.list());
        return view.*Member = picker;
    }

    static DisplayView* feedbackArea(NVHAppView& view, const Row&) {
        return view.mFeedbackArea = ViewFactory::createScrollableView(&view, "black3");
    }

    static DisplayView* feedbackLabel(NVHAppView& view, const Row& row) {
        return view.mFeedbackLabel = new LabelView(textOf(row), view.mFeedbackArea->contentView());
    }

    static DisplayView* build(NVHAppView& view, const Row& row);
};

// In the order in which they are made, which is the order in which they lie above each other.
const NVHAppView::Layout::Row NVHAppView::Layout::kRows[] = {
    {.name = "mAmbientButton",
     .make = button<&NVHAppView::mAmbientButton>,
     .text = "Record Ambient",
     .style = kLargeButton,
     .x = 360,
     .y = 30,
     .released = &NVHAppView::ambientNoiseButtonReleased},
    {.name = "mAmbientSpinner",
     .make = spinner<&NVHAppView::mAmbientSpinner, &NVHAppView::mAmbientButton>,
     .x = 180,
     .y = 30,
     .isShown = false},
    {.name = "mNotesButton",
     .make = button<&NVHAppView::mNotesButton>,
     .text = "Record Notes",
     .style = kLargeButton,
     .x = 580,
     .y = 30,
     .released = &NVHAppView::notesRecordButtonReleased},
    {.name = "mNotesSpinner",
     .make = spinner<&NVHAppView::mNotesSpinner, &NVHAppView::mNotesButton>,
     .x = 180,
     .y = 30,
     .isShown = false},
    {.name = "mStatusLabel",
     .make = label<&NVHAppView::mStatusLabel>,
     .text = "Waiting",
     .style = kCaption,
     .x = 445,
     .y = 130},
    {.name = "mUploadStatusLabel",
     .make = label<&NVHAppView::mUploadStatusLabel>,
     .text = "| Files Uploaded: -",
     .style = kLabel,
     .x = 555,
     .y = 130},
    {.name = "mResumeButton",
     .make = button<&NVHAppView::mResumeButton>,
     .text = "Touch to resume NVH App",
     .style = "ButtonType:normal; FontSize:32",
     .isShown = false,
     .isEnabled = false,
     .released = &NVHAppView::resumeButtonAction},
    {.name = "mStartButton",
     .make = boundButton<&NVHAppView::mStartButton>,
     .text = "Start",
     .style = "ButtonType:primary",
     .boundTo = "STW_leftMiddle",
     .released = &NVHAppView::startButtonAction},
    {.name = "mStopButton",
     .make = stopButton,
     .text = "Stop",
     .style = "ButtonType:stop",
     .boundTo = "STW_leftMiddle",
     .released = &NVHAppView::stopButtonAction},
    {.name = "mRpmCaption",
     .make = label<&NVHAppView::mRpmCaption>,
     .text = "RPM: ",
     .style = kLabel,
     .x = 600,
     .y = 165,
     .height = 40},
    {.name = "mRpmLabel", .make = label<&NVHAppView::mRpmLabel>, .style = kLabel, .x = 670, .y = 165},
    {.name = "mCanAlertLabel",
     .make = label<&NVHAppView::mCanAlertLabel>,
     .text = "-",
     .style = kLabel,
     .x = 860,
     .y = 180,
     .isShown = false},
    {.name = "mUploadButton",
     .make = boundButton<&NVHAppView::mUploadButton>,
     .text = "Upload",
     .style = kButton,
     .width = kCentreButtonWidth,
     .isEnabled = false,
     .boundTo = "STW_leftTop",
     .released = &NVHAppView::uploadButtonReleased},
    {.name = "mSaveButton",
     .make = boundButton<&NVHAppView::mSaveButton>,
     .text = "Save",
     .style = kButton,
     .width = kCentreButtonWidth,
     .isEnabled = false,
     .boundTo = "STW_leftMiddle",
     .released = &NVHAppView::saveButtonReleased},
    {.name = "mDiscardButton",
     .make = boundButton<&NVHAppView::mDiscardButton>,
     .text = "Discard",
     .style = kButton,
     .width = kLastCentreButtonWidth,
     .isEnabled = false,
     .boundTo = "STW_leftBottom",
     .released = &NVHAppView::discardButtonReleased},
    {.name = "mUploadAllButton",
     .make = button<&NVHAppView::mUploadAllButton>,
     .text = "Upload All",
     .style = kButton,
     .x = 15,
     .y = 535,
     .height = 60,
     .released = &NVHAppView::uploadSavedButtonReleased},
    {.name = "mReloadVdtButton",
     .make = button<&NVHAppView::mReloadVdtButton>,
     .text = "Reload VDT Static",
     .style = kButton,
     .x = 15,
     .y = 600,
     .isShown = false,
     .released = &NVHAppView::downloadVdtStatic},
    {.name = "mClearFeedbackButton",
     .make = button<&NVHAppView::mClearFeedbackButton>,
     .text = "Clear Feedback",
     .style = kButton,
     .x = 15,
     .y = 675,
     .isShown = false,
     .released = &NVHAppView::clearFeedbackLabel},
    {.name = "mDurationCaption",
     .make = label<&NVHAppView::mDurationCaption>,
     .text = "Duration",
     .style = kCaption,
     .x = 40,
     .y = 15},
    {.name = "mDurationSwitch", .make = durationSwitch, .items = kDurations, .x = 25, .y = 25},
    {.name = "mTestTypeCaption",
     .make = label<&NVHAppView::mTestTypeCaption>,
     .text = "Test Type",
     .style = kCaption,
     .x = 210,
     .y = 15},
    {.name = "mTestTypeSwitch",
     .make = testTypeSwitch<VertSlideSwitch>,
     .items = kTestTypes,
     .x = 200,
     .y = 25,
     .boundTo = "STW_leftScroll"},
    {.name = "mBrakeSwitch", .make = onOffSwitch<&NVHAppView::mBrakeSwitch>, .items = kOffOn, .width = kOnOffWidth},
    {.name = "mBrakeCaption",
     .make = label<&NVHAppView::mBrakeCaption>,
     .text = "Braking Stops\nRecording",
     .style = kCaption},
    {.name = "mStwSwitch", .make = onOffSwitch<&NVHAppView::mStwSwitch>, .items = kOffOn, .width = kOnOffWidth},
    {.name = "mStwCaption",
     .make = label<&NVHAppView::mStwCaption>,
     .text = "Steering Wheel\nControls",
     .style = kCaption},
    {.name = "mTimeLabel", .make = label<&NVHAppView::mTimeLabel>, .text = "0 s", .style = kLabel, .x = 475, .y = 165},
    {.name = "mMicChannelCaption",
     .make = label<&NVHAppView::mMicChannelCaption>,
     .text = "Mic Channel",
     .style = kLabel,
     .x = 420,
     .y = 380,
     .isShown = false},
    {.name = "mFreqResCaption",
     .make = label<&NVHAppView::mFreqResCaption>,
     .text = "Freq. Res.",
     .style = kLabel,
     .x = 670,
     .y = 380,
     .isShown = false},
    {.name = "mFeedbackArea", .make = feedbackArea, .x = 850, .y = 640, .width = 425, .height = 280},
    {.name = "mFeedbackLabel", .make = feedbackLabel, .style = "Alignment:wordwrap|center|top; Padding:12"},
    {.name = "mMicChannelPicker",
     .make = picker<&NVHAppView::mMicChannelPicker>,
     .items = kMicChannels,
     .style = kPickerRow,
     .x = 350,
     .y = 400,
     .width = 300,
     .height = 60,
     .isShown = false},
    {.name = "mFreqResPicker",
     .make = picker<&NVHAppView::mFreqResPicker>,
     .items = kFreqResolutions,
     .style = kPickerRow,
     .x = 620,
     .y = 400,
     .width = 220,
     .height = 60,
     .isShown = false},
    {.name = "mClunkButton",
     .make = clunkButton,
     .text = "Anti Torque Reversal On",
     .style = kButton,
     .x = 15,
     .y = 600,
     .width = 320,
     .height = 60,
     .isShown = false,
     .boundTo = "GUI_disableAntiClunkRequest",
     .released = &NVHAppView::clunkButtonToggled},
    {.name = "mVdtCaption",
     .make = label<&NVHAppView::mVdtCaption>,
     .text = "VDT Static",
     .style = kCaption,
     .x = 1000,
     .y = 15},
    {.name = "mVsmCaption",
     .make = label<&NVHAppView::mVsmCaption>,
     .text = "Vehicle Status Monitor",
     .style = kCaption,
     .x = 460,
     .y = 540},
    {.name = "mVsmAutoCaption",
     .make = label<&NVHAppView::mVsmAutoCaption>,
     .text = "Automatic \nAudio/HVAC Off",
     .style = kCaption,
     .isShown = false},
    {.name = "mVsmSwitch",
     .make = onOffSwitch<&NVHAppView::mVsmSwitch>,
     .items = kOffOn,
     .width = kOnOffWidth,
     .isShown = false},
    {.name = "mFeedbackTitle",
     .make = label<&NVHAppView::mFeedbackTitle>,
     .text = "Orvanta Feedback",
     .style = kCaption,
     .x = 980,
     .y = 600},
};

DisplayView* NVHAppView::Layout::build(NVHAppView& view, const Row& row) {
    DisplayView* made = row.make(view, row);
    made->setViewName(QString::fromLatin1(row.name));
    if (*row.style)
        made->setStyle(row.style);
    if (row.width > 0)
        made->setWidth(row.width);
    if (row.height > 0)
        made->setHeight(row.height);
    made->move(row.x, row.y);
    made->show(row.isShown);
    made->enable(row.isEnabled);
    if (row.released)
        connect(static_cast<ControlBase*>(made), &ControlBase::released, &view, row.released, Qt::UniqueConnection);
    return made;
}

void NVHAppView::buildWidgets() {
    for (const Layout::Row& row : Layout::kRows)
        Layout::build(*this, row);
    mUploadStatusLabel->setMaximumWidth(kUploadStatusWidth);
    mFreqResPicker->setChoice(2);
    mFeedbackLabel->setFont(FontManager::standardFont(kFeedbackPx));
    fitFeedback();
}

void NVHAppView::placeSwitches() {
    mBrakeSwitch->setRight(mTestTypeSwitch->right());
    mBrakeSwitch->setBottom(height() - 50);
    mBrakeCaption->move(mDurationSwitch->left(), mBrakeSwitch->top());
    mStwSwitch->setRight(mTestTypeSwitch->right());
    mStwSwitch->setBottom(mBrakeCaption->top() - 50);
    mStwCaption->move(mDurationSwitch->left(), mStwSwitch->top());
    // The frame of the button, which lies inside its edges, ends where the column does.
    mUploadAllButton->setWidth(mTestTypeSwitch->right() + ButtonView::kFrameMargin - mUploadAllButton->left());
    mUploadAllButton->setBottom(mStwSwitch->top() - 20);

    mVsmAutoCaption->move(mVsmCaption->left(), mVsmCaption->bottom() + 30);
    mVsmSwitch->setRight(kCentreLeft + kCentreWidth - ButtonView::kFrameMargin);
    mVsmSwitch->setTop(mVsmAutoCaption->top());
}

void NVHAppView::connectSwitches() {
    connect(mBrakeSwitch, &SlideSwitch::positionChanged, this, &NVHAppView::brakePedalControlToggledByUser);
    connect(mStwSwitch, &SlideSwitch::positionChanged, this, &NVHAppView::stwControlsToggledByUser);
    connect(mVsmSwitch, &SlideSwitch::positionChanged, this, &NVHAppView::vsmControlsToggledByUser);
}

void NVHAppView::LayoutCentreButtons() {
    const int below = mFreqResCaption->isVisible() ? mMicChannelCaption->top() : mVsmCaption->top();
    int left = kCentreLeft;
    for (ButtonView* button : {mUploadButton, mSaveButton, mDiscardButton}) {
        button->setBottom(below);
        button->setLeft(left);
        left += kCentrePitch;
    }
    const int height = mUploadButton->top() - mRpmCaption->bottom();
    for (ButtonView* button : {mStartButton, static_cast<ButtonView*>(mStopButton), mResumeButton}) {
        button->resize(kCentreWidth, height);
        button->setBottom(mUploadButton->top());
        button->setLeft(kCentreLeft);
    }
}

void NVHAppView::removeTestTypeSwitch() {
    mBoundWidgets.removeOne(dynamic_cast<DVControllable*>(mTestTypeSwitch));
    removeView(mTestTypeSwitch);
}

void NVHAppView::customizeForVDT() {
    mClearFeedbackButton->resize(mAmbientButton->width(), mAmbientButton->height());
    mClearFeedbackButton->move(mAmbientButton->left(), mAmbientButton->top());
    mReloadVdtButton->resize(mNotesButton->width(), mNotesButton->height());
    mReloadVdtButton->move(mNotesButton->left(), mNotesButton->top());
    removeView(mAmbientButton);
    removeView(mNotesButton);
    mAmbientSpinner = mNotesSpinner = nullptr;  // they were in the buttons
    removeView(mDurationCaption);
    removeView(mDurationSwitch);
    mClearFeedbackButton->show(true);
    mReloadVdtButton->show(true);

    const int columnRight = mTestTypeSwitch->right();
    removeTestTypeSwitch();
    static constexpr const char* testTypes[] = {"65 MPH", "35 MPH"};
    Layout::build(*this, {.name = "mTestTypeSwitch",
                          .make = Layout::testTypeSwitch<SlideSwitch>,
                          .items = testTypes,
                          .boundTo = "STW_leftScroll"});
    mTestTypeSwitch->setLeft(mUploadAllButton->left() + 10);
    mTestTypeSwitch->setWidth(columnRight - mTestTypeSwitch->left());
    mTestTypeSwitch->setBottom(mUploadAllButton->top() - 50);
    mTestTypeCaption->setBottom(mTestTypeSwitch->top() - 20);
    mTestTypeCaption->setLeft(120);

    moveFeedbackToLeftColumn();
}

void NVHAppView::customizeForService() {
    removeView(mDurationCaption);
    removeView(mDurationSwitch);
    removeTestTypeSwitch();
    removeView(mTestTypeCaption);
    removeView(mReloadVdtButton);
    removeView(mVdtCaption);
    removeView(mVdtTable);
    removeView(mVdtController);

    mVsmTable->setRight(left() + width() - 10);
    mVsmTable->setTop(top() + 50);
    mVsmCaption->move(mVsmTable->left() + 100, kTitleTop);

    moveFeedbackToLeftColumn();
    mClearFeedbackButton->show(true);
    mClearFeedbackButton->setWidth(mUploadAllButton->width());
    mClearFeedbackButton->setTop(mFeedbackArea->bottom());
    mClearFeedbackButton->setLeft(mUploadAllButton->left());
}

void NVHAppView::moveFeedbackToLeftColumn() {
    mFeedbackArea->resize(mStartButton->left() - left() - 45, mStartButton->height() + 10);
    mFeedbackArea->move(left() + 30, top() + 50);
    mFeedbackArea->setBackgroundColor("black3");
    mFeedbackTitle->move(left() + 90, kTitleTop);
    fitFeedback();
}

void NVHAppView::fitFeedback() {
    mFeedbackLabel->resizeToFit(mFeedbackArea->width());
    mFeedbackLabel->setWidth(mFeedbackArea->width());
}

void NVHAppView::setLabel(LabelView* label, const char* text, const char* color) {
    label->setText(QString::fromLatin1(text));
    label->setSkinColor(QString::fromLatin1(color));
}

void NVHAppView::setLabel(LabelView* label, const char* text, const char* color, quint16 x, quint16 y) {
    setLabel(label, text, color);
    label->move(x, y);
}
