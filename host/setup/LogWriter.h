#pragma once

#include <QDateTime>
#include <QFile>
#include <QObject>

// One message of the log.
struct LogMessage {
    QDateTime time;  // UTC
    QString level;
    QString sender;  // class name, "-" without a sender
    QString text;    // exactly as delivered

    // Four fields between tabs, with a line end: time with milliseconds, level, sender and text, in which line ends,
    // tabs and backslashes are written as \n, \t and \\, other control characters as \xNN (PlainText::field()).
    QByteArray toLine() const;
};

// The process's log: takes every message of HelixDash's Logger, writes it at once as a line, and hands it to observers.
//
//     if (!LogWriter::install("run.log", &error)) …
//     connect(&LogWriter::instance(), &LogWriter::written, this, &Watcher::remember);
//
// Messages come from any thread and are written on it; observers are called on the thread that installed the log, in
// the order of the lines, from its event loop. Lives until the process ends.
class LogWriter : public QObject {
    Q_OBJECT
public:
    // Opens the file for appending, or standard error for an empty path. False with a reason if it cannot be opened.
    // Called once, on the UI thread.
    static bool install(const QString& path, QString* error);
    static LogWriter& instance();

signals:
    void written(const LogMessage& message);

private:
    LogWriter() = default;
    void deliver(const LogMessage& message);

    QFile mFile;
    bool mFailed = false;
};
