#pragma once

#include "nvh/engine/RunFiles.h"
#include "nvh/engine/RunOutcome.h"
#include "nvh/files/FileLock.h"

#include <QString>

#include <optional>

// Whose the files of a run are that lie on the disk, until they are packed or discarded. UI thread.
//
//     Foreign --choose()--> Chosen --open()--> Open --close()--> Foreign
//
// Foreign: what lies there is of a run that this engine does not know, and says itself what was tested. Chosen: a test
// has been chosen, for what lies there or for a run that is to come. Open: there is a run of this engine.
class RunStore {
public:
    // A test has been chosen.
    void choose();
    // A run has begun, and what its recorder has left when it has ended; that does nothing where no run is open.
    void open(const RunFiles::TestNote& test);
    void conclude(const CaptureOutcome& capture);
    // The files are packed or discarded.
    void close() { mState = State::Foreign; }

    // From open() to close().
    bool isOpen() const { return mState == State::Open; }
    // Of the open run.
    const RunFiles::TestNote& test() const { return mTest; }
    // Of a foreign recording that says what was tested; nothing where there is none.
    std::optional<RunFiles::TestNote> foreignTest() const;
    // Why the files hold no recording; empty if they do. An older one is not the open run's.
    QString whyNoRecording() const;

    // Takes hold of the files that runs and clips write; empty if they could be had, else who has one of them.
    QString keep();
    // Lets go of them unless a run is open.
    void release();

private:
    enum class State { Foreign, Chosen, Open };

    State mState = State::Foreign;
    RunFiles::TestNote mTest;
    CaptureOutcome mCapture;
    FileLock mLock;
};
