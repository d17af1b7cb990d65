#pragma once

#include "host/drive/StepRun.h"

class DisplayView;
class DropDownPicker;
class Slider;
class SwitchControl;
class TableView;

// A step made of gestures of a finger: touches and drags at the places of views, wherever these lie and whatever lies
// over them.
class GestureRun : public StepRun {
    Q_OBJECT
public:
    explicit GestureRun(DriveStage& stage);

protected:
    // The finger is lifted: the step held, unless there is more to do.
    virtual void lifted();

    // The view of that name; null, having failed, if there is none.
    DisplayView* find(const QString& name);

    void tap(const DisplayView& view, double holdSeconds);
    // Drags the thumb to the item; fails if there is no such item. The name is what the drive calls the switch.
    void slide(const Slider& slider, const ItemChoice& to, const QString& name);

    DriveStage& mStage;
};

class TouchRun : public GestureRun {
    Q_OBJECT
public:
    TouchRun(const TouchStep& step, DriveStage& stage) : GestureRun(stage), mStep(step) {}
    void start() override;

private:
    TouchStep mStep;
};

class SlideRun : public GestureRun {
    Q_OBJECT
public:
    SlideRun(const SlideStep& step, DriveStage& stage) : GestureRun(stage), mStep(step) {}
    void start() override;

private:
    SlideStep mStep;
};

// Opens the picker's list with a touch and touches the choice in it.
class PickRun : public GestureRun {
    Q_OBJECT
public:
    PickRun(const PickStep& step, DriveStage& stage) : GestureRun(stage), mStep(step) {}
    void start() override;

protected:
    void lifted() override;

private:
    PickStep mStep;
    QPointer<DropDownPicker> mPicker;
    bool mChosen = false;
};

// Waits for the row's cell, scrolls the row to where it can be seen and slides its switch. A table that takes no touch
// is left where it is.
class MarkRun : public GestureRun {
    Q_OBJECT
public:
    MarkRun(const MarkStep& step, DriveStage& stage) : GestureRun(stage), mStep(step) {}
    void start() override;

private:
    void slideRow(TableView& table, const SwitchControl& control);

    MarkStep mStep;
};
