#include "HelixDash/services/Logger.h"

#include <QMetaObject>
#include <QMutex>
#include <QObject>

#include <cstdio>

namespace {

struct LogOutput {
    QMutex mutex;
    Logger::Output deliver;
};

// Never destroyed: messages may come while the process ends.
LogOutput& logOutput() {
    static auto* output = new LogOutput;
    return *output;
}

void writeToStandardError(const QObject* sender, const QString& text, const QString& level) {
    std::fprintf(stderr, "%s %s %s\n", qPrintable(level), sender ? sender->metaObject()->className() : "-",
                 qPrintable(text));
}

}  // namespace

Logger::Logger(const QObject* sender, const QString& level, bool flag, Sink sink) : mMessage(new Message) {
    mMessage->sender = sender;
    mMessage->level = level;
    mMessage->flag = flag;
    mMessage->sink = sink;
}

Logger::Message::~Message() {
    stream.flush();
    if (sink)
        sink(sender, buffer, level, flag);
    else
        Logger::log(sender, buffer, level, flag);
}

Logger& Logger::operator<<(const char* latin1) {
    mMessage->stream << QString::fromLatin1(latin1);
    return space();
}

Logger& Logger::operator<<(const QString& text) {
    mMessage->stream << text;
    return space();
}

Logger& Logger::operator<<(const QList<QString>& items) {
    for (const QString& item : items)
        *this << item;
    return *this;
}

Logger& Logger::space() {
    if (mMessage->spaced)
        mMessage->stream << QLatin1Char(' ');
    return *this;
}

void Logger::log(const QObject* sender, const QString& text, const QString& level, bool flag) {
    Q_UNUSED(flag)
    LogOutput& output = logOutput();
    const QMutexLocker locker(&output.mutex);
    if (output.deliver)
        output.deliver(sender, text, level);
    else
        writeToStandardError(sender, text, level);
}

void Logger::setOutput(Output output) {
    const QMutexLocker locker(&logOutput().mutex);
    logOutput().deliver = std::move(output);
}
