#pragma once

#include "host/drive/StepRun.h"

#include <functional>

// Does its work at once.
class InstantRun : public StepRun {
    Q_OBJECT
public:
    // Returns what was seen instead, empty on success.
    using Work = std::function<QString()>;

    explicit InstantRun(Work work) : mWork(std::move(work)) {}
    void start() override;

private:
    Work mWork;
};

// The work of the steps that are done at once. They keep a reference to what they are given.
namespace InstantSteps {

InstantRun::Work set(const SetStep& step);
InstantRun::Work trace(const TraceStep& step, TracePlayer& player);
InstantRun::Work config(const ConfigStep& step);
InstantRun::Work grab(const GrabStep& step, Screen& screen);
InstantRun::Work tree(const TreeStep& step, Screen& screen);

}  // namespace InstantSteps
