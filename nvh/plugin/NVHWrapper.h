#pragma once

#include "nvh/Export.h"
#include "nvh/ui/NVHAppView.h"

#include <HelixDash/services/AppInfo.h>

#include <QPointer>

class LabelView;
class SlideSwitch;

// The recorder as the host sees it: the title and the mode switch in the host's title area, and below them the main
// view of the chosen mode. Every choice of a mode throws the main view away, with its engine and whatever it was doing,
// and makes a new one.
//
// UI thread. What it puts into the title area goes with it.
class NVH_EXPORT NVHWrapper : public DisplayView {
    Q_OBJECT
public:
    // Fills the title area and makes the main view. The host owns the record, which outlives it.
    NVHWrapper(DisplayView* parent, AppInfo* info);
    ~NVHWrapper() override;

    // The main view of the present mode; a choice of another mode deletes it.
    NVHAppView* appView() const { return mAppView; }

    void shown() override;
    void hidden() override;

public slots:
    // Called by the switch, which lies outside the main view, so that it survives the view it replaces.
    void appModeChanged(int mode);

private:
    void fillTitleArea();

    DisplayView* mParent;
    AppInfo* mInfo;
    NVHAppView* mAppView = nullptr;   // a child view
    QPointer<LabelView> mTitleLabel;  // these two belong to the title area, which may go first
    QPointer<SlideSwitch> mModeSwitch;
};
