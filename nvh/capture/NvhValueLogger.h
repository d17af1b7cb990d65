#pragma once

#include "nvh/Export.h"

#include <HelixDash/values/TypedDataValues.h>

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QThread>

#include <cstdio>

// Logs one vehicle signal to a text file: a line "milliseconds, value" per change, the time counted from
// startLogging(), the value truncated toward zero.
//
//     auto* logger = new NvhValueLogger(fileName, speed);
//     logger->moveToThread(&thread);
//     connect(&thread, &QThread::started, logger, &NvhValueLogger::startLogging, Qt::QueuedConnection);
//     connect(this, &Engine::endRecording, logger, &NvhValueLogger::stopLogging);
//     connect(logger, &NvhValueLogger::finished, logger, &QObject::deleteLater);
//
// The slots run on the logger's own thread, which stopLogging() asks to quit; constructed on any other. One logger
// serves one recording.
class NVH_EXPORT NvhValueLogger : public QObject {
    Q_OBJECT
public:
    // The value is not owned and outlives the logger. Opens nothing. A null value logs nothing.
    NvhValueLogger(QString& fileName, RealDataValue* value);
    // Closes the file if it is still open.
    ~NvhValueLogger() override;

    // Creates the file or empties it, readable by this user alone; anything but a plain file of this user counts as one
    // that cannot be created. On failure logs "OpenValueStream : Cannot Create File: " with the
    // name, and no line will be written.
    void openValueStream();
    // Closes the file without what is not written yet, so that a file which blocks its writer blocks nobody else. For
    // a logger whose thread had to be terminated.
    void discardFile();
    // The value's current state truncated toward zero; 0 without a value.
    int getIntValue();

signals:
    // The file is closed; the logger can go.
    void finished();

public slots:
    // Creates the file and writes down every change from now on. Does nothing after stopLogging().
    void startLogging();
    // Closes the file, emits finished() and has the thread quit.
    void stopLogging();
    // Writes one line for the value as it is now.
    void writeToFile();

private:
    void closeFile();

    QThread mThread;
    bool mStopped = false;
    QString mFileName;
    RealDataValue* mValue;
    QElapsedTimer mClock;
    FILE* mFile = nullptr;
};
