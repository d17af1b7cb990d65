#pragma once

// Shows that something goes on. It turns while it is seen and costs nothing while it is not. Touches go through it, so
// that it may lie on a button.

#include <HelixDash/views/DisplayView.h>

#include <QBasicTimer>

class HELIXDASH_EXPORT SpinnerView : public DisplayView {
    Q_OBJECT

public:
    // Its size: 0 is 64 pixels, 1 is 48, 2 is 32, and 3 is 20, to lie beside a line of text. Any other kind is taken as
    // the nearest of these.
    explicit SpinnerView(DisplayView* parent = nullptr, int kind = 1);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QBasicTimer mTick;
    int mStep = 0;
};
