#pragma once

#include "nvh/packaging/ServerAnswer.h"
#include "nvh/packaging/SideThread.h"
#include "nvh/process/ChildProcess.h"

#include <HelixDash/services/SingleShotTimer.h>

#include <QObject>
#include <QString>
#include <QStringList>

// How a run of curl ended and what the server said.
struct CurlOutcome {
    enum class How { NotStarted, Crashed, TimedOut, Partial, Whole };

    How how = How::Whole;  // Partial: the answer did not arrive whole
    QString text;    // curl's output for the log and for people
    QString defect;  // of an answer that is not whole: why, in one line
    ServerAnswer answer;  // what was read in it

    // True if the answer arrived whole and has the wanted status.
    bool isAccepted() const { return how == How::Whole && answer.hasStatus; }
};

// One run of curl that sends something to the data server. UI thread; a long answer is judged on a thread of its own.
class CurlCall : public QObject {
    Q_OBJECT
public:
    // For an answer of that kind.
    CurlCall(ServerAnswer::Wanted wanted, QObject* parent);
    // Kills a curl that still runs. Blocks until it is gone, or until an answer that is being judged is read.
    ~CurlCall() override;

    // Start curl with a command line as a whole, or with arguments. It is ended after that many milliseconds. Again
    // only after it could not be started.
    void startCommand(const QString& command, int longestMs);
    void start(const QStringList& arguments, int longestMs);

    // From ended() on, and after a failed() that says that curl could not be started.
    const CurlOutcome& outcome() const { return mOutcome; }
    bool hasEnded() const { return mState == State::Ended; }

signals:
    // curl could not be started, and nothing follows; or it has crashed, and ended() follows.
    void failed();
    // The outcome is known.
    void ended();

private:
    enum class State { Idle, Running, Judging, Ended };

    void enter(State state);
    void heedError(QProcess::ProcessError error);
    void cutShort();
    // How it ended as curl says it; the answer may still prove to be partial.
    void heedEnd();
    void judge();
    void settle(const ServerAnswer& answer);

    ServerAnswer::Wanted mWanted;
    State mState = State::Idle;
    int mLongestMs = 0;
    CurlOutcome mOutcome;
    ChildProcess mProcess{nullptr};
    SingleShotTimer mLimit;
    SideThread mSide{this};
};
