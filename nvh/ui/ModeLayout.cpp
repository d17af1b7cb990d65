#include "nvh/ui/ModeLayout.h"

#include "nvh/controls/BrakesAndDVControllableButton.h"
#include "nvh/controls/VertSlideSwitch.h"
#include "nvh/ui/LayoutRows.h"
#include "nvh/ui/NVHAppView.h"
#include "nvh/ui/Screen.h"
#include "nvh/ui/ScreenBuilder.h"
#include "nvh/ui/TestTables.h"

#include <HelixDash/tables/TableView.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/ScrollableView.h>

namespace {

constexpr int kTitleTop = 15;

template <typename View>
void removeView(View*& view) {
    delete view;
    view = nullptr;
}

void removeTestTypeSwitch(Screen& screen) {
    screen.mBoundWidgets.removeOne(dynamic_cast<DVControllable*>(screen.mTestTypeSwitch));
    removeView(screen.mTestTypeSwitch);
}

void moveFeedbackToLeftColumn(const NVHAppView& view, Screen& screen) {
    screen.mFeedbackArea->resize(screen.mStartButton->left() - view.left() - 45, screen.mStartButton->height() + 10);
    screen.mFeedbackArea->move(view.left() + 30, view.top() + 50);
    screen.mFeedbackArea->setBackgroundColor("black3");
    screen.mFeedbackTitle->move(view.left() + 90, kTitleTop);
    screen.fitFeedback();
}

}  // namespace

void customizeForVDT(NVHAppView& view, Screen& screen) {
    screen.mClearFeedbackButton->resize(screen.mAmbientButton->width(), screen.mAmbientButton->height());
    screen.mClearFeedbackButton->move(screen.mAmbientButton->left(), screen.mAmbientButton->top());
    screen.mReloadVdtButton->resize(screen.mNotesButton->width(), screen.mNotesButton->height());
    screen.mReloadVdtButton->move(screen.mNotesButton->left(), screen.mNotesButton->top());
    removeView(screen.mAmbientButton);
    removeView(screen.mNotesButton);
    screen.mAmbientSpinner = screen.mNotesSpinner = nullptr;  // they were in the buttons
    removeView(screen.mDurationCaption);
    removeView(screen.mDurationSwitch);
    screen.mClearFeedbackButton->show(true);
    screen.mReloadVdtButton->show(true);

    const int columnRight = screen.mTestTypeSwitch->right();
    removeTestTypeSwitch(screen);
    DisplayView* const testTypes = buildWidget(view, screen, horizontalTestTypeRow());
    testTypes->setLeft(screen.mUploadAllButton->left() + 10);
    testTypes->setWidth(columnRight - testTypes->left());
    testTypes->setBottom(screen.mUploadAllButton->top() - 50);
    screen.mTestTypeCaption->setBottom(testTypes->top() - 20);
    screen.mTestTypeCaption->setLeft(120);

    moveFeedbackToLeftColumn(view, screen);
}

void customizeForService(NVHAppView& view, Screen& screen, const TestTables& tables) {
    removeView(screen.mDurationCaption);
    removeView(screen.mDurationSwitch);
    removeTestTypeSwitch(screen);
    removeView(screen.mTestTypeCaption);
    removeView(screen.mReloadVdtButton);
    removeView(screen.mVdtCaption);

    TableView* const monitor = tables.vsmTable();
    monitor->setRight(view.left() + view.width() - 10);
    monitor->setTop(view.top() + 50);
    screen.mVsmCaption->move(monitor->left() + 100, kTitleTop);

    moveFeedbackToLeftColumn(view, screen);
    screen.mClearFeedbackButton->show(true);
    screen.mClearFeedbackButton->setWidth(screen.mUploadAllButton->width());
    screen.mClearFeedbackButton->setTop(screen.mFeedbackArea->bottom());
    screen.mClearFeedbackButton->setLeft(screen.mUploadAllButton->left());
}
