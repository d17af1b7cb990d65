#pragma once

#include "nvh/engine/RunOutcome.h"
#include "nvh/process/OrphanGuard.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

class ChildProcess;

// The audio recorder and the one capture that it writes, from start to its file.
//
//     Absent --start--> Recording --stop--> Ending     a recorder that is deaf to the request is killed after 3 s
//        ^                  |                 |
//        +----- conclude ---+-----------------+        it has ended, or could not be started
//
// A capture carries what becomes of it: it serves a run or a clip, it is wanted or discarded, and once it has been
// filed it stays filed, also while the recorder still completes it. Main thread; nothing blocks but the destructor.
class Recorder : public QObject {
    Q_OBJECT
public:
    // Ending: told to end and not gone yet.
    enum class State { Absent, Recording, Ending };
    // What a capture serves.
    enum class Purpose { Run, Clip };

    // The process becomes a child of the parent.
    explicit Recorder(QObject* parent);
    // Asks a recorder that still runs to end, and kills it after 500 ms. Its capture stays where it is.
    ~Recorder() override;

    // From start() to conclude().
    bool isActive() const { return mState != State::Absent; }
    // From stop() to conclude().
    bool isEnding() const { return mState == State::Ending; }
    // What the present or the last capture is for.
    Purpose purpose() const { return mPurpose; }

    // The program and its arguments for a capture file.
    static QString program();
    static QStringList arguments(const QString& captureFile);

    // Starts the recorder on the capture file, at which nothing lies. ended() or failed() follows.
    void start(Purpose purpose, const QString& captureFile);
    // Asks the recorder to end, once. Does nothing if it does not record.
    void stop();
    // What the recorder has said so far; empty without one.
    QString words() const;
    // True from the process's end, or its failure to start, to conclude().
    bool hasEnded() const;
    // True for a recorder that could not be started: nothing else will be heard of it.
    bool hasNotStarted() const;
    // True for one that was deaf to the request to end.
    bool wasKilled() const;

    // Nobody wants the capture of the recorder that is at work: it is deleted when that has ended.
    void discard() { mFate = Fate::Discarded; }
    // The capture of the recorder that is at work goes to that file: at once where a rename does it, else when the
    // recorder has ended, since it would not complete a copy on another file system. False if there is no capture. What
    // lies there and is no plain file of this user is left there, and the capture stays where it is.
    bool fileAs(const QString& target);

    // What a recorder's end means.
    struct Conclusion {
        // How it ended and what it left.
        CaptureOutcome outcome;
        // True for a capture that is to be filed as the test recording: of a run, or of a clip that ended as it was
        // told to and that nobody has filed. Where a clip's recorder left by itself, the capture stays for the clip,
        // and does not cost the test recording.
        bool isTestRecording = false;
        // Why a capture that there is does not lie where it should; empty if it does.
        QString failure;
    };
    // The recorder has ended or could not be started. This is the one place where that is decided: how it ended, what
    // it has left, and what becomes of that.
    Conclusion conclude();

signals:
    // The process has ended.
    void ended();
    // It could not be started or crashed; after a crash ended() follows.
    void failed();

private:
    enum class Fate { Open, Filed, FiledLater, Discarded };

    void enter(State state);
    CaptureOutcome::How howItEnded() const;
    // Empty if there is sound at the capture's place, else why there is none.
    QString whyNoSound(CaptureOutcome::How how) const;
    QString moveToLateTarget();

    State mState = State::Absent;
    Purpose mPurpose = Purpose::Run;
    Fate mFate = Fate::Open;
    QString mCapture;     // where the sound lies
    QString mLateTarget;  // where it goes when the recorder has ended
    // A child of the parent; kept until the next start, since what it said may still be asked for.
    std::unique_ptr<ChildProcess> mProcess;
    OrphanGuard mGuard;
};
