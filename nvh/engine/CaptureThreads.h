#pragma once

#include <QDeadlineTimer>
#include <QPointer>
#include <QString>
#include <QThread>

#include <array>

class NVHWorker;
class NvhValueLogger;
class RealDataValue;

// The capture threads of an engine: one for each logged vehicle signal, and one that is reserved for a CAN client. UI
// thread.
class CaptureThreads {
public:
    // The engine outlives this object.
    explicit CaptureThreads(NVHWorker& worker) : mWorker(worker) {}
    // Ends what runs, within the same bounds as join(); a logger of a thread that had to be terminated leaves unwritten
    // what it has not written yet.
    ~CaptureThreads();

    // A new set of loggers, each on its thread, that begin when their threads start and end with the recording.
    void makeLoggers();
    // Starts the loggers' threads; all run at the priority of the caller.
    void startLoggers();
    // Starts the reserved thread.
    void startCan();
    // Waits for the reserved thread without a limit.
    void waitForCan();

    // Waits for all threads, at most 500 ms for each, and terminates those that have not ended by then. Blocks for 2 s
    // at the most. True if all ended by themselves.
    bool join();

private:
    static constexpr int kThreadWaitMs = 500;

    struct Named {
        QThread* thread;
        const char* name;  // as it stands in the log
    };
    std::array<Named, 4> all();
    QPointer<NvhValueLogger> makeLogger(RealDataValue* value, QString fileName, QThread& thread);
    void removeLoggersLeft(QDeadlineTimer atTheMost);
    void logRunning(const char* label, const QThread& thread);

    NVHWorker& mWorker;
    QThread mNvhCanEthThread;
    QThread mVehicleSpeedLoggerThread;
    QThread mMotorTorqueLoggerThread;
    QThread mMotorRPMLoggerThread;
    std::array<QPointer<NvhValueLogger>, 3> mLoggers;  // on their threads; delete themselves when they have finished
};
