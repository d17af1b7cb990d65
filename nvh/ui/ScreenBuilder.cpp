#include "nvh/ui/ScreenBuilder.h"

#include "nvh/controls/BrakesAndDVControllableButton.h"
#include "nvh/controls/VertSlideSwitch.h"
#include "nvh/ui/LayoutRows.h"
#include "nvh/ui/NVHAppView.h"
#include "nvh/ui/Screen.h"

#include <HelixDash/views/DropDownPicker.h>
#include <HelixDash/views/FontManager.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/ScrollableView.h>
#include <HelixDash/views/SlideSwitch.h>
#include <HelixDash/views/SpinnerView.h>
#include <HelixDash/views/ViewFactory.h>

namespace {

constexpr int kSpinnerKind = 3;
constexpr int kFeedbackPx = 25;
constexpr int kCentreLeft = 360;
constexpr int kCentreWidth = 470;
constexpr int kCentrePitch = 150;  // from one button of the centre row to the next
// The upload-status text ends where the centre column does.
constexpr int kUploadStatusWidth = 265;

// Makes a row's widget by the kind of the member that holds it.
struct Maker {
    NVHAppView& view;
    Screen& screen;
    const LayoutRow& row;

    QString text() const { return QString::fromLatin1(row.text); }
    DisplayView* parent() const { return row.parent ? row.parent(screen) : &view; }

    template <typename Bound>
    Bound* bound(Bound* widget) const {
        screen.mBoundWidgets.append(widget);
        return widget;
    }

    DisplayView* operator()(LabelView* ScreenWidgets::*member) const {
        return screen.*member = new LabelView(text(), parent());
    }

    DisplayView* operator()(ButtonView* ScreenWidgets::*member) const {
        ButtonView*& button = screen.*member;
        if (row.pressedBy)
            button =
                bound(new DVControllableWidget<BoolDataValue, ButtonView>(row.pressedBy->find(), text(), parent()));
        else
            button = new ButtonView(text(), parent());
        button->setToggle(row.isToggle);
        return button;
    }

    DisplayView* operator()(BrakesAndDVControllableButton* ScreenWidgets::*member) const {
        auto* button = bound(new BrakesAndDVControllableButton(row.pressedBy->find(), text(), parent()));
        button->ignoreBrakesWhen([&view = view] { return view.isBrakeSquealTest(); });
        return screen.*member = button;
    }

    DisplayView* operator()(SpinnerView* ScreenWidgets::*member) const {
        return screen.*member = new SpinnerView(parent(), kSpinnerKind);
    }

    DisplayView* operator()(SlideSwitch* ScreenWidgets::*member) const {
        return screen.*member = new SlideSwitch(parent(), row.items.list());
    }

    DisplayView* operator()(VertSlideSwitch* ScreenWidgets::*member) const {
        return screen.*member = new VertSlideSwitch(parent(), row.items.list());
    }

    DisplayView* operator()(SwitchControl* ScreenWidgets::*member) const {
        return screen.*member = row.isHorizontal ? testTypes<SlideSwitch>() : testTypes<VertSlideSwitch>();
    }

    template <typename Switch>
    SwitchControl* testTypes() const {
        return bound(new DVControllableWidget<IntDataValue, Switch>(row.movedBy->find(), parent(), row.items.list()));
    }

    DisplayView* operator()(DropDownPicker* ScreenWidgets::*member) const {
        auto* picker = new DropDownPicker(parent(), row.width);
        picker->setChoices(row.items.list());
        return screen.*member = picker;
    }

    DisplayView* operator()(ScrollableView* ScreenWidgets::*member) const {
        return screen.*member = ViewFactory::createScrollableView(parent(), "black3");
    }
};

void placeSwitches(const NVHAppView& view, Screen& screen) {
    screen.mBrakeSwitch->setRight(screen.mTestTypeSwitch->right());
    screen.mBrakeSwitch->setBottom(view.height() - 50);
    screen.mBrakeCaption->move(screen.mDurationSwitch->left(), screen.mBrakeSwitch->top());
    screen.mStwSwitch->setRight(screen.mTestTypeSwitch->right());
    screen.mStwSwitch->setBottom(screen.mBrakeCaption->top() - 50);
    screen.mStwCaption->move(screen.mDurationSwitch->left(), screen.mStwSwitch->top());
    // The frame of the button, which lies inside its edges, ends where the column does.
    ButtonView* const uploadAll = screen.mUploadAllButton;
    uploadAll->setWidth(screen.mTestTypeSwitch->right() + ButtonView::kFrameMargin - uploadAll->left());
    uploadAll->setBottom(screen.mStwSwitch->top() - 20);

    screen.mVsmAutoCaption->move(screen.mVsmCaption->left(), screen.mVsmCaption->bottom() + 30);
    screen.mVsmSwitch->setRight(kCentreLeft + kCentreWidth - ButtonView::kFrameMargin);
    screen.mVsmSwitch->setTop(screen.mVsmAutoCaption->top());
}

}  // namespace

DisplayView* buildWidget(NVHAppView& view, Screen& screen, const LayoutRow& row) {
    DisplayView* made = std::visit(Maker{view, screen, row}, row.member);
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
        QObject::connect(static_cast<ControlBase*>(made), &ControlBase::released, &view, row.released,
                         Qt::UniqueConnection);
    return made;
}

void buildScreen(NVHAppView& view, Screen& screen) {
    for (const LayoutRow& row : layoutRows())
        buildWidget(view, screen, row);
    screen.mUploadStatusLabel->setMaximumWidth(kUploadStatusWidth);
    screen.mFreqResPicker->setChoice(2);
    screen.mFeedbackLabel->setFont(FontManager::standardFont(kFeedbackPx));
    screen.fitFeedback();
    placeSwitches(view, screen);
    QObject::connect(screen.mBrakeSwitch, &SlideSwitch::positionChanged, &view,
                     &NVHAppView::brakePedalControlToggledByUser);
    QObject::connect(screen.mStwSwitch, &SlideSwitch::positionChanged, &view, &NVHAppView::stwControlsToggledByUser);
    QObject::connect(screen.mVsmSwitch, &SlideSwitch::positionChanged, &view, &NVHAppView::vsmControlsToggledByUser);
}

void LayoutCentreButtons(Screen& screen) {
    const int below =
        screen.mFreqResCaption->isVisible() ? screen.mMicChannelCaption->top() : screen.mVsmCaption->top();
    int left = kCentreLeft;
    for (ButtonView* button : {screen.mUploadButton, screen.mSaveButton, screen.mDiscardButton}) {
        button->setBottom(below);
        button->setLeft(left);
        left += kCentrePitch;
    }
    const int height = screen.mUploadButton->top() - screen.mRpmCaption->bottom();
    for (ButtonView* button :
         {screen.mStartButton, static_cast<ButtonView*>(screen.mStopButton), screen.mResumeButton}) {
        button->resize(kCentreWidth, height);
        button->setBottom(screen.mUploadButton->top());
        button->setLeft(kCentreLeft);
    }
}
