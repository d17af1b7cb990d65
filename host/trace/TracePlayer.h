#pragma once

#include <HelixDash/values/DataValueManager.h>

#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>

#include <memory>
#include <vector>

class TraceFile;

// Replays a trace into the data values of its columns' names.
//
//     player.start(std::make_shared<const TraceFile>(*trace), 30.0, &error);
//
// The rows from the given second on are set at their times, one by one in their order and each cell on its own, so that
// every change is seen however late the event loop comes round. Values that do not exist yet are made with the column's
// type. UI thread.
class TracePlayer : public QObject {
    Q_OBJECT
public:
    explicit TracePlayer(QObject* parent = nullptr);

    // Whether every column fits the data value of its name; one that there is not yet gets the column's type, and a
    // whole number beyond 32 bit none. An error "FILE: reason" or "FILE:LINE: reason" names the first that does not.
    static bool fits(const TraceFile& trace, QString* error);

    // Replaces what is playing. False with a reason, and all as it was, if the trace does not fit.
    bool start(std::shared_ptr<const TraceFile> trace, double fromSecond, QString* error);
    void stop();
    bool isPlaying() const { return mTrace != nullptr; }

signals:
    // After the last row; not after stop().
    void finished();

private:
    void playDueRows();
    void setRow(const TraceFile& trace, int row) const;
    void scheduleNextRow();

    std::shared_ptr<const TraceFile> mTrace;
    double mFromSecond = 0.0;
    int mNextRow = 0;
    // Tells a replay from the one that a slot started while a row was being set.
    int mReplay = 0;
    QElapsedTimer mClock;
    QTimer mTimer;
};
