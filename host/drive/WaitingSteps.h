#pragma once

#include "host/drive/StepRun.h"

#include <QElapsedTimer>
#include <QTimer>

#include <functional>

// Lets a time pass.
class WaitRun : public StepRun {
    Q_OBJECT
public:
    explicit WaitRun(const WaitStep& step);
    void start() override;

private:
    double mSeconds;
    QTimer mTimer;
};

// Looks again and again until what is expected holds, or the time is over.
class ExpectRun : public StepRun {
    Q_OBJECT
public:
    // Returns what was seen instead, empty if it holds.
    using Look = std::function<QString()>;

    ExpectRun(Look look, double withinSeconds);
    void start() override;

private:
    void look();

    Look mLook;
    double mWithinSeconds;
    QElapsedTimer mClock;
    QTimer mTimer;
};

// What the expecting steps look at. They keep a reference to what they are given.
namespace ExpectSteps {

ExpectRun::Look view(const ExpectStep& step, Screen& screen);
ExpectRun::Look log(const ExpectLogStep& step, LogWatch& log);
ExpectRun::Look value(const ExpectValueStep& step);

}  // namespace ExpectSteps
