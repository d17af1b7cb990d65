#include "bench/gateway/CandumpLog.h"

#include "bench/gateway/CandumpLine.h"

#include <QFile>
#include <QStringList>

#include <algorithm>
#include <charconv>
#include <set>

namespace {

constexpr std::int64_t kMostDisorderUs = 1'000'000;
constexpr std::int64_t kPassOfOneFrameUs = 1'000'000;
// Far more than the longest CAN FD line: what is longer is no log.
constexpr qint64 kMostLineBytes = 1024;

// The number at the end of an interface's name.
std::optional<std::uint8_t> trailingNumber(std::string_view name) {
    const std::size_t digits = name.find_last_not_of("0123456789") + 1;
    std::uint8_t number = 0;
    const auto [end, failure] = std::from_chars(name.data() + digits, name.data() + name.size(), number);
    return failure == std::errc() ? std::optional(number) : std::nullopt;
}

std::string_view withoutLineEnd(const QByteArray& line) {
    std::string_view text(line.constData(), static_cast<std::size_t>(line.size()));
    text.remove_suffix(text.size() - (text.find_last_not_of("\r\n") + 1));
    return text;
}

}  // namespace

class CandumpReader {
public:
    CandumpReader(const CandumpLog::Buses& buses, QString name) : mBuses(buses), mName(std::move(name)) {}

    bool readLine(const QByteArray& line);
    bool finish();

    CandumpLog mLog;
    QString mError;

private:
    bool fail(const QString& reason) {
        mError = QStringLiteral("%1:%2: %3").arg(mName).arg(mLineNumber).arg(reason);
        return false;
    }
    bool take(const CandumpLine& line);

    const CandumpLog::Buses& mBuses;
    QString mName;
    int mLineNumber = 0;
    std::int64_t mLatestUs = 0;
    std::set<std::string, std::less<>> mNamesSeen;
};

bool CandumpReader::readLine(const QByteArray& line) {
    ++mLineNumber;
    if (line.size() > kMostLineBytes)
        return fail(QStringLiteral("too long for a line of a log"));
    const std::string_view text = withoutLineEnd(line);
    if (text.find_first_not_of(' ') == std::string_view::npos)
        return true;
    std::string reason;
    const auto read = readCandumpLine(text, &reason);
    return read ? take(*read) : fail(QString::fromUtf8(reason.c_str()));
}

bool CandumpReader::take(const CandumpLine& line) {
    using Kind = CandumpLine::Kind;
    if (line.us < mLatestUs - kMostDisorderUs)
        return fail(QStringLiteral("the time goes back by %1 s").arg(double(mLatestUs - line.us) / 1e6, 0, 'f', 6));
    mLatestUs = std::max(mLatestUs, line.us);
    mNamesSeen.emplace(line.interface);
    switch (line.kind) {
        case Kind::Extended:
            ++mLog.mExtended;
            return true;
        case Kind::Error:
            ++mLog.mErrors;
            return true;
        case Kind::Remote:
            ++mLog.mRemote;
            return true;
        case Kind::Fd:
            ++mLog.mFd;
            return true;
        case Kind::Classic:
            break;
    }
    const auto given = mBuses.find(line.interface);
    const auto bus = given != mBuses.end() ? std::optional(given->second) : trailingNumber(line.interface);
    if (!bus) {
        const QString name = QString::fromUtf8(line.interface.data(), qsizetype(line.interface.size()));
        return fail(QStringLiteral("interface %1 has no bus number from 0 to 255; --bus %1=N gives it one").arg(name));
    }
    mLog.mRecording.frames.push_back({line.us, {*bus, std::uint16_t(line.id)}, line.length, line.data});
    return true;
}

bool CandumpReader::finish() {
    for (const auto& [name, bus] : mBuses) {
        if (!mNamesSeen.contains(name)) {
            mError = QStringLiteral("%1: no frame of interface %2").arg(mName, QString::fromStdString(name));
            return false;
        }
    }
    std::vector<CanFrame>& frames = mLog.mRecording.frames;
    if (frames.empty()) {
        const QString leftOut = mLog.leftOut();
        mError = QStringLiteral("%1: no frame to forward%2")
                     .arg(mName, leftOut.isEmpty() ? leftOut : QStringLiteral("; left out: ") + leftOut);
        return false;
    }
    std::stable_sort(frames.begin(), frames.end(), [](const CanFrame& a, const CanFrame& b) { return a.us < b.us; });
    const std::int64_t first = frames.front().us;
    for (CanFrame& frame : frames)
        frame.us -= first;
    // Repeated, the recording goes on after a pause of its own usual length.
    const std::int64_t length = frames.back().us;
    const auto pauses = std::int64_t(frames.size()) - 1;
    mLog.mRecording.passUs = length + (length > 0 ? std::max<std::int64_t>(length / pauses, 1) : kPassOfOneFrameUs);
    return true;
}

std::optional<CandumpLog> CandumpLog::read(const QString& path, const Buses& buses, QString* error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("%1: %2").arg(path, file.errorString());
        return std::nullopt;
    }
    return read(file, path, buses, error);
}

std::optional<CandumpLog> CandumpLog::read(QIODevice& device, const QString& name, const Buses& buses, QString* error) {
    CandumpReader reader(buses, name);
    while (true) {
        const QByteArray line = device.readLine(kMostLineBytes + 2);
        if (line.isEmpty())
            break;
        if (!reader.readLine(line)) {
            *error = reader.mError;
            return std::nullopt;
        }
    }
    if (!reader.finish()) {
        *error = reader.mError;
        return std::nullopt;
    }
    return std::move(reader.mLog);
}

QString CandumpLog::leftOut() const {
    QStringList parts;
    const auto add = [&parts](int count, const char* what) {
        if (count > 0)
            parts += QStringLiteral("%1 %2%3").arg(count).arg(QLatin1String(what), QLatin1String(count > 1 ? "s" : ""));
    };
    add(mExtended, "extended id");
    add(mErrors, "error message");
    add(mRemote, "remote frame");
    add(mFd, "CAN FD frame");
    return parts.join(QStringLiteral(", "));
}
