#include "nvh/plugin/NVHWrapper.h"

#include <HelixDash/views/DisplayImage.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/SlideSwitch.h>

namespace {

// The switch reaches to the title area's edges; what is seen of it begins where the left column does.
constexpr int kSwitchLeft = 25;
constexpr int kSwitchRoom = 4;

}  // namespace

NVHWrapper::NVHWrapper(DisplayView* parent, AppInfo* info) : DisplayView(parent), mParent(parent), mInfo(info) {
    DisplayImage::addSearchPath(info->directory);
    resize(mParent->width(), mParent->height());
    move(0, 0);
    mAppView = new NVHAppView(this, AppModeNvh);
    fillTitleArea();
    connect(mModeSwitch, &SlideSwitch::positionChanged, this, &NVHWrapper::appModeChanged);
}

NVHWrapper::~NVHWrapper() {
    delete mTitleLabel;
    delete mModeSwitch;
}

void NVHWrapper::fillTitleArea() {
    DisplayView* area = mInfo->titleArea;
    mTitleLabel = new LabelView(QStringLiteral("NVH %1").arg(QLatin1String(NVHAppVersion)), area);
    mTitleLabel->setViewName("mTitleLabel");
    mTitleLabel->setStyle("DeveloperAppTitle");
    mTitleLabel->resize(area->width(), area->height());

    mModeSwitch =
        new SlideSwitch(area, {appModeToStr(AppModeNvh), appModeToStr(AppModeVdt), appModeToStr(AppModeService)});
    mModeSwitch->setViewName("mModeSwitch");
    mModeSwitch->setContentsMargins(kSwitchLeft, kSwitchRoom, 0, kSwitchRoom);
    mModeSwitch->resize(mModeSwitch->width() + kSwitchLeft, area->height());
    mModeSwitch->setLeft(0);
    mModeSwitch->setBottom(area->height());
}

void NVHWrapper::appModeChanged(int mode) {
    delete mAppView;
    mAppView = nullptr;
    mAppView = new NVHAppView(this, static_cast<AppMode>(mode));
}

void NVHWrapper::shown() {
    DisplayView::shown();
    if (mAppView)
        mAppView->show(true);
}

void NVHWrapper::hidden() {
    DisplayView::hidden();
    if (mAppView)
        mAppView->show(false);
}
