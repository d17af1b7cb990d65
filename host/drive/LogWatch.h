#pragma once

#include "host/setup/LogWriter.h"

#include <deque>
#include <optional>

// The log as a drive looks at it: line by line, never back before what it has found last. Remembers every message from
// its making on. UI thread.
class LogWatch : public QObject {
    Q_OBJECT
public:
    explicit LogWatch(QObject* parent = nullptr);

    // Whether a message that contains the text, of that level if one is given, has come since the last one found; goes
    // on behind it if so.
    bool find(const QString& text, const std::optional<QString>& level);
    // How many messages have come since the last one found, and the newest of them.
    QString seen() const;

private:
    void remember(const LogMessage& message);

    std::deque<LogMessage> mMessages;
};
