// The capture threads: one for each logged vehicle signal, and one reserved for a CAN client.

#include "nvh/capture/LoggerRunning.h"
#include "nvh/capture/NvhValueLogger.h"
#include "nvh/engine/NVHWorker.h"

#include <HelixDash/services/Logger.h>
#include <HelixDash/values/DataValueManager.h>

std::array<NVHWorker::CaptureThread, 4> NVHWorker::captureThreads() {
    return {{
        {&mNvhCanEthThread, "NvhCanEthThread"},
        {&mVehicleSpeedLoggerThread, "mVehicleSpeedLoggerThread"},
        {&mMotorTorqueLoggerThread, "mMotorTorqueLoggerThread"},
        {&mMotorRPMLoggerThread, "mMotorRPMLoggerThread"},
    }};
}

void NVHWorker::initValueLoggerThreads() {
    Logger(this, "INFO") << "initValueLoggerThreads";
    mLoggers = {
        initValueLogger("VAPI_signedVehicleSpeed", cVehicleSpeedFileName.value(), mVehicleSpeedLoggerThread),
        initValueLogger("VAPI_torqueCmd", cMotorTorqueFileName.value(), mMotorTorqueLoggerThread),
        initValueLogger("VAPI_motorRPM", cRpmFileName.value(), mMotorRPMLoggerThread),
    };
}

QPointer<NvhValueLogger> NVHWorker::initValueLogger(const char* valueName, QString fileName, QThread& thread) {
    auto* value = DataValueManager::instance().find<RealDataValue>(QLatin1String(valueName));
    auto* logger = new NvhValueLogger(fileName, value);
    logger->moveToThread(&thread);
    // Through the thread's event loop: Qt refuses to terminate a thread inside a slot that runs straight from
    // started(), and then aborts when the thread's object goes.
    const auto queuedOnce = Qt::ConnectionType(Qt::QueuedConnection | Qt::UniqueConnection);
    connect(&thread, &QThread::started, logger, &NvhValueLogger::startLogging, queuedOnce);
    connect(this, &NVHWorker::endRecording, logger, &NvhValueLogger::stopLogging, Qt::UniqueConnection);
    connect(logger, &NvhValueLogger::finished, logger, &NvhValueLogger::deleteLater, Qt::UniqueConnection);
    return logger;
}

void NVHWorker::startValueLoggerThreads() {
    mVehicleSpeedLoggerThread.start(QThread::InheritPriority);
    mMotorTorqueLoggerThread.start(QThread::InheritPriority);
    logRunning("VehicleSpeedThread Running: ", mVehicleSpeedLoggerThread);
    logRunning("MotorTorqueThread Running: ", mMotorTorqueLoggerThread);
    mMotorRPMLoggerThread.start(QThread::InheritPriority);
    logRunning("MotorRPMThread Running: ", mMotorRPMLoggerThread);
}

void NVHWorker::logRunning(const char* label, const QThread& thread) {
    Logger(this, "INFO") << label << (thread.isRunning() ? "true" : "false");
}

void NVHWorker::initRpmCaptureThread() {}

void NVHWorker::startRpmCaptureThread() {
    loggerRunning = true;
    mNvhCanEthThread.start(QThread::InheritPriority);
    logRunning("mNvhCanEthThread Running: ", mNvhCanEthThread);
}

void NVHWorker::threadStatus() {
    if (cLogVerbose.value())
        Logger(this, "INFO") << "Waiting for mNvhCanEthThread...";
    mNvhCanEthThread.wait();
    logRunning("mNvhCanEthThread Running: ", mNvhCanEthThread);
}

bool NVHWorker::joinCaptureThreads() {
    bool allEnded = true;
    for (const CaptureThread& capture : captureThreads()) {
        if (capture.thread->wait(kThreadWaitMs))
            continue;
        allEnded = false;
        Logger(this, "ERROR")
            << QStringLiteral("%1 did't exit on time! Terminating...").arg(QLatin1String(capture.name));
        capture.thread->terminate();
    }
    if (allEnded)
        return true;
    // The loggers of terminated threads can no longer delete themselves.
    for (QPointer<NvhValueLogger>& logger : mLoggers) {
        if (logger && logger->thread()->wait(kThreadWaitMs)) {
            logger->discardFile();
            delete logger;
        }
    }
    return false;
}
