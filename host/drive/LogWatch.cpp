#include "host/drive/LogWatch.h"

#include <algorithm>

LogWatch::LogWatch(QObject* parent) : QObject(parent) {
    connect(&LogWriter::instance(), &LogWriter::written, this, &LogWatch::remember);
}

void LogWatch::remember(const LogMessage& message) {
    mMessages.push_back(message);
}

bool LogWatch::find(const QString& text, const std::optional<QString>& level) {
    const auto found = std::find_if(mMessages.begin(), mMessages.end(), [&](const LogMessage& message) {
        return message.text.contains(text) && (!level || message.level == *level);
    });
    if (found == mMessages.end())
        return false;
    mMessages.erase(mMessages.begin(), std::next(found));
    return true;
}

QString LogWatch::seen() const {
    if (mMessages.empty())
        return QStringLiteral("no line has come since the last one found");
    const LogMessage& last = mMessages.back();
    return QStringLiteral("%1 lines since the last one found, none of them fits; the newest is %2 \"%3\"")
        .arg(mMessages.size())
        .arg(last.level, last.text);
}
