#include "nvh/capture/NvhValueLogger.h"

#include "nvh/capture/Truncate.h"
#include "nvh/files/OwnFile.h"

#include <HelixDash/services/Logger.h>

#include <fcntl.h>
#include <unistd.h>

NvhValueLogger::NvhValueLogger(QString& fileName, RealDataValue* value) : mFileName(fileName), mValue(value) {}

NvhValueLogger::~NvhValueLogger() {
    closeFile();
    mThread.quit();
    mThread.wait();
}

void NvhValueLogger::startLogging() {
    Logger(this, "INFO") << "Logger Thread Started! ID: " << quintptr(QThread::currentThreadId());
    // A recording that ended before this thread came up is over: no file may be left open for it.
    if (mStopped)
        return;
    openValueStream();
    mClock.start();
    if (mValue)
        connect(mValue, &RealDataValue::realValueChanged, this, &NvhValueLogger::writeToFile, Qt::UniqueConnection);
}

void NvhValueLogger::openValueStream() {
    closeFile();
    mFile = openOwnStream(mFileName);
    if (!mFile) {
        Logger(this, "ERROR") << "OpenValueStream : Cannot Create File: " << mFileName;
        mStopped = true;
    }
}

void NvhValueLogger::writeToFile() {
    if (mStopped || !mFile)
        return;
    const int value = getIntValue();
    const qint64 elapsed = mClock.elapsed();
    const QByteArray line = QByteArray::number(elapsed) + ", " + QByteArray::number(value) + '\n';
    if (std::fwrite(line.constData(), size_t(line.size()), 1, mFile) < 1)
        Logger(this, "ERROR") << "writeToFile"
                              << " Can't Write to File!";
}

int NvhValueLogger::getIntValue() {
    const DataValue::StateLocker locker(mValue);
    return mValue ? truncated(mValue->value()) : 0;
}

void NvhValueLogger::stopLogging() {
    Logger(this, "INFO") << "stopLogging"
                         << " Stopping DataValue Logging....";
    mStopped = true;
    closeFile();
    emit finished();
    thread()->quit();
}

void NvhValueLogger::discardFile() {
    if (!mFile)
        return;
    // Closing the stream writes out its buffer wherever its descriptor leads.
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    ::dup2(nowhere, fileno(mFile));
    ::close(nowhere);
    closeFile();
}

void NvhValueLogger::closeFile() {
    if (!mFile)
        return;
    // Buffered lines reach the disk here, so this is where a full disk shows.
    if (std::fclose(mFile) != 0)
        Logger(this, "ERROR") << "writeToFile"
                              << " Can't Write to File!";
    mFile = nullptr;
}
