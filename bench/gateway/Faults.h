#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <vector>

// All that can go wrong on the way from a gateway to its client.
enum class Fault : std::uint8_t {
    AckLose,
    AckWrongState,
    AckWrongBus,
    AckWrongId,
    AckGarble,
    AckTruncate,
    AckLengthen,
    AckDuplicate,
    AckDelay,
    DataLose,
    DataCount,
    DataGarble,
    DataTruncate,
    DataDuplicate,
    DataDelay,
};
constexpr std::size_t kFaultCount = 15;

// As it is written on a command line: "ack-lose".
QString nameOf(Fault fault);
std::optional<Fault> faultFromName(const QString& name);
// One line for each fault, for `--help`.
QString describeFaults();

// What goes out through here suffers each fault with that fault's probability.
//
// Every fault has a sequence of its own that begins at the seed: the n-th acknowledgement (or datagram) is struck or
// spared whatever other faults are set, and again when a run is repeated. Several faults may strike at once; what is
// lost suffers nothing else.
class Faults {
public:
    enum class Channel { Acknowledgements, Datagrams };
    // By number of the fault, 0 to 1.
    using Probabilities = std::array<double, kFaultCount>;

    struct Parcel {
        QByteArray bytes;
        int delayMs = 0;
    };

    Faults(const Probabilities& probabilities, std::uint64_t seed, int delayMs);

    // What is to be sent in place of `bytes`, one whole acknowledgement or datagram of frames: nothing, or one or two
    // of something.
    std::vector<Parcel> strike(Channel channel, const QByteArray& bytes);

    // How often the fault has struck.
    int strikes(Fault fault) const { return mStates[std::size_t(fault)].strikes; }

private:
    struct State {
        double probability = 0.0;
        std::mt19937_64 random;
        int strikes = 0;
    };

    static bool happens(State& state);
    void apply(Fault fault, std::mt19937_64& random, std::vector<Parcel>& parcels) const;

    std::array<State, kFaultCount> mStates;
    int mDelayMs;
};
