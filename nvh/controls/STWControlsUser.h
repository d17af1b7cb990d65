#pragma once

// Who is told what becomes of the steering-wheel controls that an NVHModeHandler takes for it.
class STWControlsUser {
public:
    // Never deleted as such.
    virtual ~STWControlsUser() = default;

    // The controls have been taken.
    virtual void stwControlsAcquired() = 0;
    // The handler is giving them back.
    virtual void stwControlsYielded() = 0;
    // Somebody else has taken them.
    virtual void stwControlsLost() = 0;
};
