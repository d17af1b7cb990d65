#pragma once

// A short message above everything in its parent. The creator makes it and forgets it:
//
//     auto* popup = new PopupView(this, 20, 5);
//     auto* text = new LabelView("Use the wheel.", popup);
//     popup->sizeToContents();
//
// It lies in the middle of its parent and closes by itself after kShownMs, or at once when the screen is touched
// anywhere; that touch does nothing else. It also closes when it is hidden or disabled, by its parent too. Closed, it
// deletes itself. It never outlives its parent.

#include <HelixDash/views/DisplayView.h>

#include <QTimer>

class HELIXDASH_EXPORT PopupView : public DisplayView {
    Q_OBJECT

public:
    static constexpr int kShownMs = 4000;

    // Radius of the corners and the room kept free between the edge and the contents, in pixels.
    PopupView(DisplayView* parent, int cornerRadius, int margin);

    // Makes the popup just large enough for the views in it, with the margin around them.
    void sizeToContents();

    void dismiss();

protected:
    void enabledFlagChanged(bool on) override;
    void touchLost() override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void moveToMiddle();

    const int mCornerRadius;
    const int mMargin;
    bool mDismissed = false;
    QTimer mTimer;
};
