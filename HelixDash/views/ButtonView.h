#pragma once

// A push button, or with setToggle(true) one that stays on and off in turn.
//
//     auto* start = new ButtonView("Start", this);
//     start->setStyle("ButtonType:primary");
//     connect(start, &ControlBase::released, this, &MyView::startReleased);
//
// It acts when the finger that touched it is lifted on it; a finger that has slid off does not count. The frame is
// drawn kFrameMargin inside the left and right edge, and the strips beside it take touches too, unless they lie on a
// neighbour's frame: buttons whose edges overlap by the margin stand frame to frame, and each acts exactly where it is
// seen. touched() and released() press and release it as a finger does, for a button that something else operates: the
// steering wheel, a pedal. However it is operated, a release without a touch before it does nothing, and a button that
// is disabled or hidden neither takes a touch nor keeps one.
//
// A label that is too wide is drawn smaller, below 19 px wrapped. Children that are shown on the button (a spinner)
// keep the label to their left.

#include <HelixDash/views/ControlBase.h>

#include <QPointer>
#include <QVariantAnimation>

class HELIXDASH_EXPORT ButtonView : public ControlBase {
    Q_OBJECT

public:
    static constexpr int kFrameMargin = 10;

    static constexpr int kPressMs = 120;

    enum Color { Normal = 0, Saved = 1, Recording = 3 };

    explicit ButtonView(DisplayView* parent = nullptr);
    explicit ButtonView(const QString& label, DisplayView* parent = nullptr);

    QString label() const { return mLabel; }
    void setLabel(const QString& label);

    bool isToggle() const { return mToggle; }
    void setToggle(bool toggle);
    bool isOn() const { return mOn; }
    void setOn(bool on);

    // One of Color; any other number looks normal.
    int buttonColor() const { return mColor; }
    void setButtonColor(int color);

    bool isPressed() const { return mTouched; }

    void touched();
    // A toggle has changed when ControlBase::released(ControlBase*) goes out.
    void released();

protected:
    void styleChanged() override;
    void touchLost() override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    enum class Kind { Normal, Primary, Stop };

    QRect frame() const;
    QRect labelPlace() const;
    ButtonView* buttonUnder(const QPoint& place);
    void setFingerOn(bool on);
    void showPress();
    // Name of the colours that kind, colour and state of the button call for.
    QString look() const;

    QString mLabel;
    Kind mKind = Kind::Normal;
    int mColor = Normal;
    bool mToggle = false;
    bool mOn = false;
    bool mTouched = false;            // pressed, by a finger or by touched()
    bool mFingerOn = true;            // the finger that presses it is still on it
    QVariantAnimation mPress;         // 0 at rest .. 1 pressed
    QPointer<ButtonView> mOperating;  // the button that the finger which came down here operates
};
