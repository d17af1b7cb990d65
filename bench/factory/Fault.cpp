#include "bench/factory/Fault.h"

#include <QStringList>

namespace {

enum class Number { None, Optional, Needed };

struct KindRow {
    Fault::Kind kind;
    Number number;
    const char* name;
    const char* form;
    int least;
    int most;
    const char* effect;
};

constexpr KindRow kKinds[] = {
    {Fault::Kind::None, Number::None, "none", "none", 0, 0, "answer as it should"},
    {Fault::Kind::Refuse, Number::None, "refuse", "refuse", 0, 0, "close the connection without an answer"},
    {Fault::Kind::Delay, Number::Needed, "delay", "delay:MS", 0, 600'000, "answer MS milliseconds late"},
    {Fault::Kind::Cut, Number::Optional, "cut", "cut[:BYTES]", 1, 1'000'000,
     "close after BYTES, or half, of the answer"},
    {Fault::Kind::Garbage, Number::None, "garbage", "garbage", 0, 0, "answer bytes that are no HTTP"},
    {Fault::Kind::BadBody, Number::None, "bad-body", "bad-body", 0, 0, "the right status with a broken body"},
    {Fault::Kind::Empty, Number::None, "empty", "empty", 0, 0, "the right status with no body"},
    {Fault::Kind::Status, Number::Needed, "status", "status:CODE", 200, 599,
     "another status; from 400 on nothing is stored"},
    {Fault::Kind::NoUrl, Number::None, "no-url", "no-url", 0, 0, "upload only: stored, 200, but no URL in the body"},
};

struct EndpointRow {
    Endpoint endpoint;
    const char* name;
};

constexpr EndpointRow kEndpoints[] = {
    {Endpoint::Upload, "upload"}, {Endpoint::SonvaraFiles, "sonvara_files"}, {Endpoint::Static, "static"}};

}  // namespace

std::optional<Fault> Fault::parse(const QString& text) {
    const QString name = text.section(QLatin1Char(':'), 0, 0);
    const bool hasNumber = text.contains(QLatin1Char(':'));
    for (const KindRow& row : kKinds) {
        if (name != QLatin1String(row.name))
            continue;
        if (!hasNumber)
            return row.number == Number::Needed ? std::nullopt : std::optional(Fault{row.kind, 0});
        bool ok = false;
        const int number = text.section(QLatin1Char(':'), 1).toInt(&ok);
        if (row.number == Number::None || !ok || number < row.least || number > row.most)
            return std::nullopt;
        return Fault{row.kind, number};
    }
    return std::nullopt;
}

QString Fault::toString() const {
    for (const KindRow& row : kKinds) {
        if (row.kind == kind) {
            const bool withNumber = row.number == Number::Needed || (row.number == Number::Optional && number > 0);
            return QLatin1String(row.name) + (withNumber ? QStringLiteral(":%1").arg(number) : QString());
        }
    }
    Q_UNREACHABLE();
}

QString Fault::describeKinds() {
    QStringList lines;
    for (const KindRow& row : kKinds)
        lines += QStringLiteral("  %1 %2").arg(QLatin1String(row.form), -12).arg(QLatin1String(row.effect));
    return lines.join(QLatin1Char('\n'));
}

std::optional<Endpoint> endpointFromName(const QString& name) {
    for (const EndpointRow& row : kEndpoints) {
        if (name == QLatin1String(row.name))
            return row.endpoint;
    }
    return std::nullopt;
}

QString nameOf(Endpoint endpoint) {
    return QLatin1String(kEndpoints[static_cast<size_t>(endpoint)].name);
}

bool FaultBoard::set(Endpoint endpoint, const Fault& fault, int times) {
    if (fault.kind == Fault::Kind::NoUrl && endpoint != Endpoint::Upload)
        return false;
    const std::lock_guard lock(mMutex);
    mSettings[static_cast<size_t>(endpoint)] = {fault, times};
    return true;
}

Fault FaultBoard::take(Endpoint endpoint) {
    const std::lock_guard lock(mMutex);
    Setting& setting = mSettings[static_cast<size_t>(endpoint)];
    const Fault fault = setting.fault;
    if (setting.left > 0 && --setting.left == 0)
        setting = {};
    return fault;
}
