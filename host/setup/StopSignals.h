#pragma once

#include <QObject>

#include <vector>

// SIGINT, SIGTERM and SIGHUP as a signal on the event loop, so that a program can end what it has begun. A second one
// of the same kind ends the process at once, unless rearm() has been called. What the process was told to ignore when
// it was started (SIGHUP by nohup) stays ignored.
//
// One object at a time. UI thread.
class StopSignals : public QObject {
    Q_OBJECT
public:
    explicit StopSignals(QObject* parent = nullptr);
    ~StopSignals() override;

    // The next one is caught again.
    void rearm();

    // What a shell expects as the status of a program that was ended so.
    static int exitStatus(int signal) { return 128 + signal; }

signals:
    void caught(int signal);

private:
    void read();

    std::vector<int> mCaught;
};
