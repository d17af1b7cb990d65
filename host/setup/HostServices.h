#pragma once

#include "host/setup/HostOptions.h"
#include "host/trace/TracePlayer.h"

// Puts in place what an application asks of its vehicle: the log, the named data values, the configuration, the
// vehicle's facts, and a trace to replay.
//
//     HostServices services;
//     if (!services.open(*options, &error)) …   // one line; the program ends with 2
//     … load what uses them …
//     services.startTrace();
//
// UI thread, once in a process.
class HostServices {
public:
    // False with a reason if a file cannot be used or a value cannot be set as told. No value is set before everything
    // has been read.
    bool open(const HostOptions& options, QString* error);

    // Starts the trace that the options name; does nothing without one.
    void startTrace();
    TracePlayer& tracePlayer() { return mTracePlayer; }

    // Makes the data values that exist without being asked for, each invalid.
    static void addNamedValues();

private:
    std::shared_ptr<const TraceFile> mTrace;
    TracePlayer mTracePlayer;
};
