#pragma once

#include <HelixDash/views/DisplayView.h>

// The touchscreen: 1300 × 1000, a title area of 60 above the application's 1300 × 940.
class Screen : public DisplayView {
    Q_OBJECT
public:
    static constexpr int kWidth = 1300;
    static constexpr int kHeight = 1000;
    static constexpr int kTitleHeight = 60;

    Screen();

    DisplayView& titleArea() { return *mTitleArea; }
    DisplayView& applicationArea() { return *mApplicationArea; }

private:
    DisplayView* mTitleArea;
    DisplayView* mApplicationArea;
};
