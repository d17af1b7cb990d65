#pragma once

// Belongs to a view that lies above everything (a popup, a list of choices) and is to close when the screen is touched
// elsewhere. While the view is visible the trap keeps such a touch from everything else. A control that has not seen
// the finger come down does nothing when it is lifted, so it is enough to keep the beginning of the touch. Not for
// applications.

#include <QObject>

class DisplayView;
class QPoint;

class TouchTrap : public QObject {
    Q_OBJECT

public:
    enum class OnOwner { Passes, Elsewhere };

    // onOwner says whether a touch on the owner itself reaches it.
    TouchTrap(DisplayView* owner, OnOwner onOwner);

signals:
    void touchedElsewhere();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool isOnScreen(QObject* watched) const;

    DisplayView* const mOwner;
    const OnOwner mOnOwner;
};
