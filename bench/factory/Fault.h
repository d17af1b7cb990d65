#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <mutex>
#include <optional>

// What a test can make the server do wrong, and where.
//
// The ways to fail are listed once, here, and `--help` prints them. Written as
// text (`parse()`, `toString()`) a fault is its name, and a number behind a colon where it has one: `refuse`,
// `delay:1500`, `cut`, `cut:20`, `status:503`.
struct Fault {
    enum class Kind {
        None,     // answers as it should
        Refuse,   // closes the connection without an answer; nothing is stored
        Delay,    // answers `number` milliseconds late
        Cut,      // closes the connection after `number` bytes of the answer, 0: after half of it
        Garbage,  // bytes that are no HTTP at all
        BadBody,  // the right status, a body that begins as it should and is broken
        Empty,    // the right status, no body
        Status,   // status `number`; from 400 on nothing is stored or registered
        NoUrl,    // upload only: stored, 200, but the body names no URL
    };

    Kind kind = Kind::None;
    int number = 0;

    static std::optional<Fault> parse(const QString& text);
    QString toString() const;
    // One line for each kind, for `--help`.
    static QString describeKinds();
};

// The addresses that faults can be set for.
enum class Endpoint { Upload, SonvaraFiles, Static };
std::optional<Endpoint> endpointFromName(const QString& name);
QString nameOf(Endpoint endpoint);

// Which fault each endpoint has at present. Any thread.
class FaultBoard {
public:
    // Sets the fault of the next `times` requests to `endpoint`, 0: of all to come. False if this fault has no meaning
    // there.
    bool set(Endpoint endpoint, const Fault& fault, int times);
    // The fault of the request that has just come in; counts it.
    Fault take(Endpoint endpoint);

private:
    struct Setting {
        Fault fault;
        int left = 0;
    };
    std::mutex mMutex;
    std::array<Setting, 3> mSettings;
};
