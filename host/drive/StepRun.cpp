#include "host/drive/StepRun.h"

#include "host/drive/GestureSteps.h"
#include "host/drive/InstantSteps.h"
#include "host/drive/WaitingSteps.h"

namespace {

using Run = std::unique_ptr<StepRun>;

struct Maker {
    DriveStage& stage;

    Run operator()(const SetStep& step) const { return std::make_unique<InstantRun>(InstantSteps::set(step)); }
    Run operator()(const TraceStep& step) const {
        return std::make_unique<InstantRun>(InstantSteps::trace(step, stage.tracePlayer));
    }
    Run operator()(const ConfigStep& step) const { return std::make_unique<InstantRun>(InstantSteps::config(step)); }
    Run operator()(const GrabStep& step) const {
        return std::make_unique<InstantRun>(InstantSteps::grab(step, stage.screen));
    }
    Run operator()(const TreeStep& step) const {
        return std::make_unique<InstantRun>(InstantSteps::tree(step, stage.screen));
    }

    Run operator()(const TouchStep& step) const { return std::make_unique<TouchRun>(step, stage); }
    Run operator()(const SlideStep& step) const { return std::make_unique<SlideRun>(step, stage); }
    Run operator()(const PickStep& step) const { return std::make_unique<PickRun>(step, stage); }
    Run operator()(const MarkStep& step) const { return std::make_unique<MarkRun>(step, stage); }

    Run operator()(const WaitStep& step) const { return std::make_unique<WaitRun>(step); }
    Run operator()(const ExpectStep& step) const {
        return std::make_unique<ExpectRun>(ExpectSteps::view(step, stage.screen), step.within);
    }
    Run operator()(const ExpectLogStep& step) const {
        return std::make_unique<ExpectRun>(ExpectSteps::log(step, stage.log), step.within);
    }
    Run operator()(const ExpectValueStep& step) const {
        return std::make_unique<ExpectRun>(ExpectSteps::value(step), step.within);
    }
};

}  // namespace

std::unique_ptr<StepRun> StepRun::make(const DriveAction& action, DriveStage& stage) {
    return std::visit(Maker{stage}, action);
}
