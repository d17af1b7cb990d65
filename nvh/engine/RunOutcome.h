#pragma once

#include <QByteArray>
#include <QString>

// How a recorder ended and what it left.
struct CaptureOutcome {
    enum class How {
        None,        // none has run
        Stopped,     // as it was told to
        Refused,     // not started: its files are somebody else's
        NotStarted,  // the program could not be started
        LeftEarly,   // by itself: no device, a full disk
        Crashed,
        Killed,  // deaf to the request to end; its header was repaired
    };

    How how = How::None;  // see there
    QString file;         // where the sound lies now; empty if there is none
    QString words;        // the recorder's own, or the system's
    QString noFile;       // why there is no sound, or why it is not in its place; empty if it is

    // True for a recorder that did not end as it was told to.
    bool hasFailed() const { return how != How::None && how != How::Stopped; }
};

// How the analysis program ended and what it said.
struct AnalysisOutcome {
    // Done with exit code 0, Failed with another; TimedOut: killed when its time was over.
    enum class How { None, Done, NotStarted, Failed, Crashed, TimedOut };

    How how = How::None;  // see there
    int exitCode = 0;     // the program's
    QByteArray table;     // from its standard output
    QString summary;      // from its standard error
};
