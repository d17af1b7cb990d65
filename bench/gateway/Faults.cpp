#include "bench/gateway/Faults.h"

#include "bench/gateway/GatewayWire.h"

#include <QStringList>
#include <QtEndian>

namespace {

using Channel = Faults::Channel;

struct FaultRow {
    Fault fault;
    Channel channel;
    const char* name;
    const char* effect;
};

// In the order of the enumeration, which is also the order in which faults strike one datagram.
constexpr std::array<FaultRow, kFaultCount> kFaults = {{
    {Fault::AckLose, Channel::Acknowledgements, "ack-lose", "the acknowledgement is not sent"},
    {Fault::AckWrongState, Channel::Acknowledgements, "ack-wrong-state", "start for stop, stop for start"},
    {Fault::AckWrongBus, Channel::Acknowledgements, "ack-wrong-bus", "another bus"},
    {Fault::AckWrongId, Channel::Acknowledgements, "ack-wrong-id", "another id"},
    {Fault::AckGarble, Channel::Acknowledgements, "ack-garble", "one or more bytes in a row are changed"},
    {Fault::AckTruncate, Channel::Acknowledgements, "ack-truncate", "cut off anywhere, to nothing at the shortest"},
    {Fault::AckLengthen, Channel::Acknowledgements, "ack-lengthen", "1 to 200 bytes more behind it"},
    {Fault::AckDuplicate, Channel::Acknowledgements, "ack-duplicate", "sent twice"},
    {Fault::AckDelay, Channel::Acknowledgements, "ack-delay", "sent --delay milliseconds late"},
    {Fault::DataLose, Channel::Datagrams, "data-lose", "the datagram is not sent"},
    {Fault::DataCount, Channel::Datagrams, "data-count", "speaks of more frames than it holds"},
    {Fault::DataGarble, Channel::Datagrams, "data-garble", "one or more bytes in a row are changed"},
    {Fault::DataTruncate, Channel::Datagrams, "data-truncate", "cut off anywhere, to nothing at the shortest"},
    {Fault::DataDuplicate, Channel::Datagrams, "data-duplicate", "sent twice"},
    {Fault::DataDelay, Channel::Datagrams, "data-delay", "sent --delay milliseconds late, behind later ones"},
}};

constexpr qsizetype kMostAdditionalBytes = 200;

// From `least` to `most`, both included.
template <typename Number>
Number between(std::mt19937_64& random, Number least, Number most) {
    return Number(least + Number(random() % std::uint64_t(most - least + 1)));
}

void garble(QByteArray& bytes, std::mt19937_64& random) {
    if (bytes.isEmpty())
        return;
    const qsizetype from = between<qsizetype>(random, 0, bytes.size() - 1);
    const qsizetype to = between<qsizetype>(random, from, bytes.size() - 1);
    for (qsizetype i = from; i <= to; ++i)
        bytes[i] = char(bytes.at(i) ^ char(between(random, 1, 255)));
}

void writeShort(QByteArray& bytes, qsizetype at, int number) {
    qToBigEndian(quint16(number), bytes.data() + at);
}

int shortIn(const QByteArray& bytes, qsizetype at) {
    return qFromBigEndian<quint16>(bytes.constData() + at);
}

void lengthen(QByteArray& bytes, std::mt19937_64& random) {
    for (qsizetype left = between<qsizetype>(random, 1, kMostAdditionalBytes); left > 0; --left)
        bytes.append(char(between(random, 0, 255)));
}

}  // namespace

QString nameOf(Fault fault) {
    return QLatin1String(kFaults[std::size_t(fault)].name);
}

std::optional<Fault> faultFromName(const QString& name) {
    for (const FaultRow& row : kFaults) {
        if (name == QLatin1String(row.name))
            return row.fault;
    }
    return std::nullopt;
}

QString describeFaults() {
    QStringList lines;
    for (const FaultRow& row : kFaults)
        lines += QStringLiteral("  %1 %2").arg(QLatin1String(row.name), -16).arg(QLatin1String(row.effect));
    return lines.join(QLatin1Char('\n'));
}

Faults::Faults(const Probabilities& probabilities, std::uint64_t seed, int delayMs) : mDelayMs(delayMs) {
    for (std::size_t i = 0; i < kFaultCount; ++i) {
        std::seed_seq sequence{std::uint32_t(seed), std::uint32_t(seed >> 32U), std::uint32_t(i)};
        mStates[i].random.seed(sequence);
        mStates[i].probability = probabilities[i];
    }
}

bool Faults::happens(State& state) {
    constexpr double kUnit = 1.0 / 9007199254740992.0;  // 2^-53
    return double(state.random() >> 11U) * kUnit < state.probability;
}

std::vector<Faults::Parcel> Faults::strike(Channel channel, const QByteArray& bytes) {
    std::vector<Parcel> parcels{{bytes, 0}};
    for (const FaultRow& row : kFaults) {
        if (row.channel != channel)
            continue;
        State& state = mStates[std::size_t(row.fault)];
        // What a fault does is drawn from a generator of this one strike, so that the next decision is always the
        // same number of draws away.
        const bool happened = happens(state);
        const std::uint64_t seed = state.random();
        if (!happened || parcels.empty())
            continue;
        std::mt19937_64 details(seed);
        ++state.strikes;
        apply(row.fault, details, parcels);
    }
    return parcels;
}

void Faults::apply(Fault fault, std::mt19937_64& random, std::vector<Parcel>& parcels) const {
    QByteArray& bytes = parcels.front().bytes;
    switch (fault) {
        case Fault::AckLose:
        case Fault::DataLose:
            parcels.clear();
            break;
        case Fault::AckWrongState:
            bytes[wire::kStateAt] = char(bytes.at(wire::kStateAt) ^ 1);
            break;
        case Fault::AckWrongBus:
            bytes[wire::kBusAt] = char(bytes.at(wire::kBusAt) ^ char(between(random, 1, 255)));
            break;
        case Fault::AckWrongId:
            writeShort(bytes, wire::kIdAt, shortIn(bytes, wire::kIdAt) ^ between(random, 1, 65'535));
            break;
        case Fault::DataCount: {
            const int count = shortIn(bytes, wire::kFrameCountAt);
            writeShort(bytes, wire::kFrameCountAt, between(random, count + 1, 65'535));
            break;
        }
        case Fault::AckGarble:
        case Fault::DataGarble:
            garble(bytes, random);
            break;
        case Fault::AckTruncate:
        case Fault::DataTruncate:
            bytes.truncate(between<qsizetype>(random, 0, bytes.size() - 1));
            break;
        case Fault::AckLengthen:
            lengthen(bytes, random);
            break;
        case Fault::AckDuplicate:
        case Fault::DataDuplicate:
            parcels.push_back(parcels.front());
            break;
        case Fault::AckDelay:
        case Fault::DataDelay:
            for (Parcel& parcel : parcels)
                parcel.delayMs = mDelayMs;
            break;
    }
}
