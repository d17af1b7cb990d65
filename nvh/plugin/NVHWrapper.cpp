#include "nvh/plugin/NVHWrapper.h"

#include <HelixDash/views/DisplayImage.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/SlideSwitch.h>

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
