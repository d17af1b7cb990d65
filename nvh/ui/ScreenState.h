#pragma once

#include "nvh/ui/ScreenWidgets.h"

#include <span>

// What the screen is in the middle of, and what follows from it.
//
//     ready -> Start -> waiting -> recording -> recorded -> Save, Upload -> packing -> ready
//                                                        -> Discard -> ready
//
// The driver may do what is enabled. NVHAppView::enter() is the only way into a state.
enum class ScreenState {
    Ready,            // for a run, a clip or an upload; what is recorded may be saved, uploaded or discarded
    Waiting,          // Start was touched; for the recorder
    WaitingForBrake,  // a brake squeal test of a moving car; for the pedal, and then for the recorder
    Recording,        // a run is under way
    Recorded,         // a run has ended and is offered to be saved, uploaded or discarded
    Clip,             // a side recording, see SideClips
    Packing,          // Save or Upload was touched; until it is decided what becomes of this package
    UploadingAll,     // until the next outcome of an upload
    Resumed,          // after an interruption that has outlasted what went on when it came
};

// What one call does to one control.
enum class Cell {
    Unchanged,
    On,        // enabled
    Off,       // disabled
    Shown,     // enabled and shown
    Hidden,    // disabled and hidden
    IfTest,    // enabled if there is a test recording, else unchanged
    IfAny,     // enabled if there is a test recording or a clip, else unchanged
    AsBefore,  // as it was when the screen's picture was taken last
};

// The recordings of this session that exist.
struct Recordings {
    bool ambient = false;  // the cabin's noise
    bool notes = false;    // the spoken note
    bool test = false;     // the run
    // True if there is one of them.
    bool any() const { return ambient || notes || test; }
};

// A control, and what each call does to it.
struct ControlRow {
    // The control; null where the mode does not have it, and for the row that stands for all views without one.
    DisplayView* (*view)(const ScreenWidgets& widgets);
    // The states' calls.
    Cell initState = Cell::Unchanged;
    Cell stateTwo = Cell::Unchanged;
    Cell stateThree = Cell::Unchanged;
    Cell disableAllInteractions = Cell::Unchanged;
    // EnableStartStopButton(Stop).
    Cell stopOnly = Cell::Unchanged;
    Cell updateAdditionalButtons = Cell::Unchanged;
    // What a recording has of its own: a timed run and an ambient clip cannot be stopped, a note is ended by a tap.
    Cell timed = Cell::Unchanged;
    Cell ambientTouched = Cell::Unchanged;
    Cell noteRuns = Cell::Unchanged;
    // For these two every view of the screen counts.
    Cell interrupt = Cell::Off;
    Cell restoreState = Cell::AsBefore;
};

// A column of the table.
using Call = Cell ControlRow::*;

// All controls, Start and Stop first.
std::span<const ControlRow> controlRows();
// The row of a view; that of the views without one of their own where it is no control.
const ControlRow& rowOf(const DisplayView* view, const ScreenWidgets& widgets);

// What the outcome of an upload or a post does besides its texts and counts.
enum class OnOutcome {
    LeadsToReady,     // the screen becomes ready
    TextsOnly,        // what the driver is about to do is not the upload's to take away
    OwnLeadsToReady,  // only the outcome of the package in hand
};

// What follows from a state.
struct StateRow {
    ScreenState state;    // the state
    Call call;            // what entering it does to the controls
    OnOutcome onOutcome;  // what an upload's outcome does in it
    bool isAtRest;        // nothing is going on that comes to its end without the driver
};

// The row of that state.
const StateRow& rowOf(ScreenState state);
