#pragma once

#include "nvh/Export.h"
#include "nvh/controls/STWControlsUser.h"

#include <QObject>

#include <optional>

class DataValue;

// Takes the steering-wheel controls of the vehicle for the recorder, gives them back, and notices when somebody else
// takes them. Who has them is said by GUI_steeringWheelControlsMode: 6 is the recorder, 0 nobody in particular.
//
// The scroll wheel's counter (STW_leftScroll) is put back as it was when the controls were taken. Controls that were
// the recorder's already are neither taken nor told of, and nothing is put back for them.
//
// UI thread. The user outlives the handler.
class NVH_EXPORT NVHModeHandler : public QObject {
    Q_OBJECT
public:
    // What GUI_steeringWheelControlsMode says.
    static constexpr int kOwnMode = 6;
    static constexpr int kGivenBack = 0;

    // Takes the controls.
    explicit NVHModeHandler(STWControlsUser& view);
    // Gives them back.
    ~NVHModeHandler() override;

    // Takes the controls if they are not the recorder's, when the screen is shown or the driver resumes.
    void acquire();
    // Gives them back if they are, when the screen is hidden.
    void yield();

public slots:
    // The mode has changed: tells the user if the controls have been taken from it.
    void GUI_steeringWheelControlsModeChanged(DataValue* value);

private:
    STWControlsUser& mView;
    bool mYielding = false;  // the change that follows is this handler's own
    std::optional<qint32> mSavedScroll;
};
