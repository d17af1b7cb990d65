#include "nvh/engine/CaptureThreads.h"

#include "nvh/capture/LoggerRunning.h"
#include "nvh/capture/NvhValueLogger.h"
#include "nvh/engine/NVHWorker.h"
#include "nvh/vehicle/VehicleSignals.h"

#include <HelixDash/services/Logger.h>

CaptureThreads::~CaptureThreads() {
    for (const Named& named : all())
        named.thread->quit();
    const bool allEnded = join();
    // Terminating is the last resort and may itself take its time; a thread object must not go while its thread runs.
    for (const Named& named : all())
        named.thread->wait();
    for (const auto& logger : mLoggers) {
        if (logger && !allEnded)
            logger->discardFile();
        delete logger;
    }
}

std::array<CaptureThreads::Named, 4> CaptureThreads::all() {
    return {{
        {&mNvhCanEthThread, "NvhCanEthThread"},
        {&mVehicleSpeedLoggerThread, "mVehicleSpeedLoggerThread"},
        {&mMotorTorqueLoggerThread, "mMotorTorqueLoggerThread"},
        {&mMotorRPMLoggerThread, "mMotorRPMLoggerThread"},
    }};
}

void CaptureThreads::makeLoggers() {
    // One whose thread took longer to die would begin again with it.
    removeLoggersLeft(QDeadlineTimer(0));
    mLoggers = {
        makeLogger(VehicleSignals::kSpeed.find(), cVehicleSpeedFileName.value(), mVehicleSpeedLoggerThread),
        makeLogger(VehicleSignals::kTorque.find(), cMotorTorqueFileName.value(), mMotorTorqueLoggerThread),
        makeLogger(VehicleSignals::kMotorRpm.find(), cRpmFileName.value(), mMotorRPMLoggerThread),
    };
}

QPointer<NvhValueLogger> CaptureThreads::makeLogger(RealDataValue* value, QString fileName, QThread& thread) {
    auto* logger = new NvhValueLogger(fileName, value);
    logger->moveToThread(&thread);
    // Through the thread's event loop: Qt refuses to terminate a thread inside a slot that runs straight from
    // started(), and then aborts when the thread's object goes.
    const auto queuedOnce = Qt::ConnectionType(Qt::QueuedConnection | Qt::UniqueConnection);
    QObject::connect(&thread, &QThread::started, logger, &NvhValueLogger::startLogging, queuedOnce);
    QObject::connect(&mWorker, &NVHWorker::endRecording, logger, &NvhValueLogger::stopLogging, Qt::UniqueConnection);
    QObject::connect(logger, &NvhValueLogger::finished, logger, &NvhValueLogger::deleteLater, Qt::UniqueConnection);
    return logger;
}

void CaptureThreads::startLoggers() {
    mVehicleSpeedLoggerThread.start(QThread::InheritPriority);
    mMotorTorqueLoggerThread.start(QThread::InheritPriority);
    logRunning("VehicleSpeedThread Running: ", mVehicleSpeedLoggerThread);
    logRunning("MotorTorqueThread Running: ", mMotorTorqueLoggerThread);
    mMotorRPMLoggerThread.start(QThread::InheritPriority);
    logRunning("MotorRPMThread Running: ", mMotorRPMLoggerThread);
}

void CaptureThreads::startCan() {
    loggerRunning = true;
    mNvhCanEthThread.start(QThread::InheritPriority);
    logRunning("mNvhCanEthThread Running: ", mNvhCanEthThread);
}

void CaptureThreads::waitForCan() {
    mNvhCanEthThread.wait();
    logRunning("mNvhCanEthThread Running: ", mNvhCanEthThread);
}

void CaptureThreads::logRunning(const char* label, const QThread& thread) {
    Logger(&mWorker, "INFO") << label << (thread.isRunning() ? "true" : "false");
}

bool CaptureThreads::join() {
    const QDeadlineTimer atTheMost(int(all().size()) * kThreadWaitMs);
    bool allEnded = true;
    for (const Named& named : all()) {
        if (named.thread->wait(kThreadWaitMs))
            continue;
        allEnded = false;
        Logger(&mWorker, "ERROR")
            << QStringLiteral("%1 did't exit on time! Terminating...").arg(QLatin1String(named.name));
        named.thread->terminate();
    }
    if (allEnded)
        return true;
    removeLoggersLeft(atTheMost);
    return false;
}

// The loggers of terminated threads can no longer delete themselves.
void CaptureThreads::removeLoggersLeft(QDeadlineTimer atTheMost) {
    for (QPointer<NvhValueLogger>& logger : mLoggers) {
        if (logger && logger->thread()->wait(atTheMost)) {
            logger->discardFile();
            delete logger;
        }
    }
}
