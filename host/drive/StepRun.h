#pragma once

#include "host/drive/DriveStep.h"

#include <QObject>
#include <QPointer>

class Finger;
class LogWatch;
class Screen;
class TracePlayer;

// What a drive acts on; all of it outlives the drive.
struct DriveStage {
    Screen& screen;
    Finger& finger;
    TracePlayer& tracePlayer;
    LogWatch& log;
};

// One step while it runs. Ends with exactly one of its signals, which may come before start() returns.
class StepRun : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    virtual void start() = 0;

    static std::unique_ptr<StepRun> make(const DriveAction& action, DriveStage& stage);

signals:
    void held();
    // What was seen instead.
    void failed(const QString& seen);
};
