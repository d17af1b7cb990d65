#pragma once

#include "nvh/process/ChildOutput.h"

#include <HelixDash/services/SingleShotTimer.h>

#include <QProcess>
#include <QString>
#include <QStringList>

// A program that the recorder starts. Whoever holds the object owns the program: nothing else ends it, and it does not
// outlive its owner.
//
//     auto* curl = new ChildProcess(this);
//     connect(curl, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this, &Upload::judge);
//     curl->start("curl", arguments);
//     …
//     curl->output().text()
//
// The program has a process group of its own, so that Ctrl-C reaches its owner alone, inherits no descriptor but its
// three standard ones, and makes files that its user alone can read. When this process dies, however it dies, the
// program gets a signal; since that signal follows the thread that has started it, programs are started on the main
// thread, where the object lives.
//
// Everything that it prints is read as it comes; what goes beyond the limits is counted and thrown away.
class ChildProcess : public QProcess {
public:
    // What the program gets when this process dies: SIGTERM if it has something to complete, nothing if it has to do
    // something then.
    enum class WhenOrphaned { Kill, Terminate, LetLive };

    // Starts nothing yet.
    explicit ChildProcess(QObject* parent, WhenOrphaned whenOrphaned = WhenOrphaned::Kill);
    // Kills a program that still runs, and waits until it is gone. Nobody hears of that.
    ~ChildProcess() override;

    // What it has printed so far on standard output (with merged channels: on both), and on standard error.
    const ChildOutput& output();
    const ChildOutput& errors();

    // True from the start of the program to its end.
    bool isActive() const { return state() != QProcess::NotRunning; }
    // True for a program that has ended as it should: started, not crashed, exit status 0.
    bool hasSucceeded() const;

    // Asks the program to end, once: a second request can cut short what the first one began. If it has not ended after
    // that many milliseconds it is killed. Does nothing for a program that has been asked already or does not run.
    void end(int graceMs);
    // True from the request to the program's end.
    bool isEnding() const { return mEnding && isActive(); }
    // True if the program was deaf to the request and was killed.
    bool wasKilled() const { return mKilled; }
    // Kills the program if it still runs after that many milliseconds; then hasTimedOut() is true.
    void setTimeLimit(int ms) { mTimeLimit.start(ms, this, &ChildProcess::killLate); }
    bool hasTimedOut() const { return mTimedOut; }

    // For an owner that goes: from now on nobody hears of the program; it is asked to end, given that many
    // milliseconds, then killed. Blocks until it is gone. Zero: killed at once.
    void endNow(int graceMs);

private:
    void readOutput();
    void readErrors();
    void killDeaf();
    void killLate();

    ChildOutput mOutput{ChildOutput::kMostJudged};
    ChildOutput mErrors{ChildOutput::kMostShown};
    SingleShotTimer mGrace;
    SingleShotTimer mTimeLimit;
    bool mEnding = false;
    bool mKilled = false;
    bool mTimedOut = false;
};

// "[a, b]", as lists stand in the log.
QString bracketed(const QStringList& items);
