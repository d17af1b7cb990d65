#include "nvh/packaging/ServerAnswer.h"

#include "nvh/process/ChildOutput.h"

#include <HelixDash/json/KJson.h>

#include <QByteArrayView>
#include <QVariant>

#include <algorithm>
#include <array>
#include <cstring>

namespace {

// One answer's headers.
struct Headers {
    QString statusLine;
    int status = 0;
    qsizetype bodyAt = -1;  // behind the blank line; -1 if there is none
    qsizetype length = -1;  // of the body; -1 if it is not said

    bool isInterim() const { return status >= 100 && status < 200; }
    // After these curl asks again, and prints the next answer behind this one.
    bool isRepeated() const {
        constexpr std::array kRepeated = {408, 429, 500, 502, 503, 504};
        return std::find(kRepeated.begin(), kRepeated.end(), status) != kRepeated.end();
    }
};

Headers headersAt(const QByteArray& bytes, qsizetype at) {
    constexpr QByteArrayView kLength("content-length:");
    Headers headers;
    const auto heedStatus = [&headers](QByteArrayView line) {
        headers.statusLine = ChildOutput::shown(line.toByteArray());
        headers.status = headers.statusLine.section(QLatin1Char(' '), 1, 1).toInt();
    };
    for (qsizetype end = bytes.indexOf('\n', at); end >= 0; end = bytes.indexOf('\n', at)) {
        const QByteArrayView line = QByteArrayView(bytes).sliced(at, end - at).trimmed();
        at = end + 1;
        if (headers.statusLine.isEmpty()) {
            heedStatus(line);
        } else if (line.isEmpty()) {
            headers.bodyAt = at;
            break;
        } else if (line.size() > kLength.size() &&
                   qstrnicmp(line.data(), kLength.size(), kLength.data(), kLength.size()) == 0) {
            headers.length = line.sliced(kLength.size()).trimmed().toByteArray().toLongLong();
        }
    }
    if (headers.statusLine.isEmpty())
        heedStatus(QByteArrayView(bytes).sliced(at).trimmed());
    return headers;
}

// Unlike Qt's search, in time that grows with the size alone.
qsizetype find(const QByteArray& bytes, const char* text, qsizetype from = 0) {
    const void* found = ::memmem(bytes.constData() + from, size_t(bytes.size() - from), text, std::strlen(text));
    return found ? static_cast<const char*>(found) - bytes.constData() : -1;
}

bool beginsAnswer(const QByteArray& bytes, qsizetype at) {
    return at >= 0 && at < bytes.size() && QByteArrayView(bytes).sliced(at).startsWith("HTTP/");
}

// Where the answer behind this one begins; -1 if this is the last.
qsizetype nextAnswer(const QByteArray& bytes, const Headers& headers) {
    if (headers.bodyAt < 0 || beginsAnswer(bytes, headers.bodyAt))
        return headers.bodyAt;
    if (!headers.isRepeated())
        return -1;
    if (headers.length < 0)
        return find(bytes, "HTTP/", headers.bodyAt);
    const bool isThere = headers.length < bytes.size() - headers.bodyAt;
    return isThere && beginsAnswer(bytes, headers.bodyAt + headers.length) ? headers.bodyAt + headers.length : -1;
}

}  // namespace

ServerAnswer ServerAnswer::read(const QByteArray& bytes, Wanted wanted) {
    ServerAnswer answer;
    answer.hasStatus = find(bytes, wanted == Wanted::Stored ? "HTTP/1.1 200 OK" : "HTTP/1.1 201") >= 0;
    for (qsizetype at = beginsAnswer(bytes, 0) ? 0 : -1; at >= 0;) {
        const Headers headers = headersAt(bytes, at);
        answer.headersEnd = headers.bodyAt >= 0 && !headers.isInterim();
        answer.statusLine = headers.isInterim() ? QString() : headers.statusLine;
        at = nextAnswer(bytes, headers);
    }
    if (wanted == Wanted::Stored) {
        if (const qsizetype urlAt = find(bytes, "http://"); urlAt >= 0)
            answer.url = bytes.mid(urlAt);
    } else if (const qsizetype bodyAt = bytes.indexOf('{'); bodyAt >= 0) {
        const QVariantMap body = KJson::Parser::parse(bytes.mid(bodyAt)).value.toMap();
        answer.feedback = ChildOutput::shown(body.value(QStringLiteral("VDT Feedback")).toString().toUtf8());
    }
    return answer;
}
