#pragma once

// A choice among a few items that are all seen at once. Shown as SlideSwitch (sideways) or VerticalSlideSwitch.
//
// positionChanged() goes out once when the user has chosen another item, by a tap on it or by dragging the thumb;
// setPosition() and Slider::setValue() without notify move the thumb silently. The thumb slides in 120 ms, position()
// is the new one at once. A new switch is at position 0. Contents margins that are set before the size stay blank.

#include <HelixDash/views/ControlBase.h>
#include <HelixDash/views/Slider.h>

#include <QStringList>

class HELIXDASH_EXPORT SwitchControl : public ControlBase {
    Q_OBJECT

public:
    int position() const { return qRound(mSlider->value()); }
    // Kept inside 0 .. items().size() - 1.
    void setPosition(int position);

    // In order of their positions.
    const QStringList& items() const { return mSlider->items(); }
    // Empty where there is no such position.
    QString labelAt(int position) const { return items().value(position); }
    // Where a finger chooses the item, in this view.
    QRect itemPlace(int position) const;

    // Owned by the switch; its value is the position.
    Slider* slider() const { return mSlider; }

signals:
    void positionChanged(int position);

protected:
    SwitchControl(DisplayView* parent, Qt::Orientation orientation, const QStringList& itemsByPosition);

    void resizeEvent(QResizeEvent* event) override;

private:
    void chosen();

    Slider* mSlider;
};
