#pragma once

#include "host/drive/DriveFile.h"
#include "host/drive/StepRun.h"

#include <QElapsedTimer>
#include <QTimer>

// Plays a drive: its steps one after the other on the event loop, each said in a line on standard error as it begins.
//
// The first step that does not hold ends the drive; file, line, step and what was seen instead are written to standard
// error, with nothing in it that acts on a terminal. UI thread.
class DriveRunner : public QObject {
    Q_OBJECT
public:
    DriveRunner(DriveFile drive, DriveStage stage, QObject* parent = nullptr);
    ~DriveRunner() override;

    // Begins at the next turn of the event loop.
    void start();

signals:
    void finished(bool everyStepHeld);

private:
    double seconds() const { return double(mClock.nsecsElapsed()) / 1e9; }
    // The step's line as it may be printed.
    QByteArray source() const;
    void beginStep();
    void stepHeld();
    void stepFailed(const QString& seen);
    const DriveStep& step() const { return mDrive.steps[mStep]; }

    const DriveFile mDrive;
    DriveStage mStage;
    std::size_t mStep = 0;
    std::unique_ptr<StepRun> mRun;
    QElapsedTimer mClock;
    QTimer mTimer;
};
