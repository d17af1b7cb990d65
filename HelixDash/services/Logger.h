#pragma once

#include <HelixDash/Export.h>

#include <QList>
#include <QSharedData>
#include <QString>
#include <QTextStream>

#include <functional>

class QObject;

// One message of the diagnostics log, written as a stream.
//
//     Logger(this, "INFO") << "Found Packages:" << names;
//
// Every inserted item is followed by one blank, the last one included. Copies of a handle share the message; it is
// delivered once, when the last handle goes, on that thread. Any thread may log.
class HELIXDASH_EXPORT Logger {
public:
    // A place of the caller's own for the message, instead of the process's log.
    using Sink = void (*)(const QObject* sender, const QString& text, const QString& level, bool flag);
    // Where the process's log goes. Called from any thread, by one thread at a time.
    using Output = std::function<void(const QObject* sender, const QString& text, const QString& level)>;

    // The sender names the class in the log; null is allowed. Levels in use: "INFO", "WARN", "ERROR".
    explicit Logger(const QObject* sender, const QString& level, bool flag = false, Sink sink = nullptr);

    Logger& operator<<(const char* latin1);
    Logger& operator<<(const QString& text);
    // The items, each followed by a blank.
    Logger& operator<<(const QList<QString>& items);
    template <typename Value>
    Logger& operator<<(const Value& value) {
        mMessage->stream << value;
        return space();
    }

    // Delivers a finished text; what a message does when its last handle goes.
    static void log(const QObject* sender, const QString& text, const QString& level, bool flag);

    // Replaces the place where the process's log goes; an empty function restores standard error.
    static void setOutput(Output output);

private:
    struct HELIXDASH_EXPORT Message : QSharedData {
        ~Message();
        QString buffer;
        QTextStream stream{&buffer};
        const QObject* sender = nullptr;
        QString level;
        bool spaced = true;
        bool flag = false;
        Sink sink = nullptr;
    };

    Logger& space();

    QExplicitlySharedDataPointer<Message> mMessage;
};
