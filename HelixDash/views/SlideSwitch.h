#pragma once

// A switch whose items lie side by side, position 0 at the left.
//
//     auto* brake = new SlideSwitch(this, {"OFF", "ON"});
//     connect(brake, &SlideSwitch::positionChanged, this, &MyView::brakeToggled);

#include <HelixDash/views/SwitchControl.h>

class HELIXDASH_EXPORT SlideSwitch : public SwitchControl {
    Q_OBJECT

public:
    enum Type {
        Compact = 0,  // 60 high, as wide as its items need
        Row = 2       // 70 high and 410 wide, for a row of a table
    };

    SlideSwitch(DisplayView* parent, const QStringList& items);

    // One of Type; any other number is Compact. Gives the switch the type's size.
    int switchType() const { return mType; }
    void setSwitchType(int type);

private:
    int compactWidth() const;

    int mType = Compact;
};
