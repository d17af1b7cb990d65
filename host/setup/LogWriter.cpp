#include "host/setup/LogWriter.h"

#include "host/setup/PlainText.h"

#include <HelixDash/services/Logger.h>

#include <cstdio>

QByteArray LogMessage::toLine() const {
    const QStringList fields = {time.toUTC().toString(Qt::ISODateWithMs), level, sender, PlainText::field(text)};
    return fields.join(QLatin1Char('\t')).toUtf8() + '\n';
}

LogWriter& LogWriter::instance() {
    // Never destroyed: messages may come while the process ends.
    static auto* writer = new LogWriter;
    return *writer;
}

bool LogWriter::install(const QString& path, QString* error) {
    LogWriter& writer = instance();
    writer.mFile.setFileName(path);
    // Unbuffered, so that each line is one write and nothing is lost if the process dies.
    const bool open = path.isEmpty() ? writer.mFile.open(stderr, QIODevice::WriteOnly | QIODevice::Unbuffered)
                                     : writer.mFile.open(QIODevice::Append | QIODevice::Unbuffered);
    if (!open) {
        if (error)
            *error = QStringLiteral("%1: %2").arg(path, writer.mFile.errorString());
        return false;
    }
    Logger::setOutput([&writer](const QObject* sender, const QString& text, const QString& level) {
        const QString className = sender ? QString::fromLatin1(sender->metaObject()->className()) : QStringLiteral("-");
        writer.deliver({QDateTime::currentDateTimeUtc(), level, className, text});
    });
    return true;
}

// Runs on any thread, on one at a time.
void LogWriter::deliver(const LogMessage& message) {
    const QByteArray line = message.toLine();
    if (mFile.write(line) != line.size() && !mFailed) {
        mFailed = true;
        std::fprintf(stderr, "The log cannot be written: %s\n", PlainText::printable(mFile.errorString()).constData());
    }
    QMetaObject::invokeMethod(
        this, [this, message] { emit written(message); }, Qt::QueuedConnection);
}
