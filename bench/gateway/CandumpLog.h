#pragma once

#include "bench/gateway/CanFrame.h"

#include <QString>

#include <cstdint>
#include <map>
#include <optional>
#include <string>

class QIODevice;

// The frames of a `candump -L` log that the gateway's protocol can carry.
//
//     QString error;
//     const auto log = CandumpLog::read("drive.log", {{"vcan", 2}}, &error);
//     if (!log)
//         qCritical("%s", qPrintable(error));   // drive.log:17: data "012" ends in the middle of a byte
//
// An interface stands for the bus of the number at the end of its name (can1: 1), unless it is given another one.
// Frames with an extended id, error messages, remote frames and CAN FD frames are left out and counted. Several
// interfaces may have been logged up to a second out of order; the frames are put in the order of their times.
class CandumpLog {
public:
    using Buses = std::map<std::string, std::uint8_t, std::less<>>;

    // Nothing, and an error "FILE:LINE: reason", if a line is damaged, an interface has no number, a name in `buses` is
    // no interface of the log, or no frame is left.
    static std::optional<CandumpLog> read(const QString& path, const Buses& buses, QString* error);
    // The same from an open device; the name stands for it in errors.
    static std::optional<CandumpLog> read(QIODevice& device, const QString& name, const Buses& buses, QString* error);

    Recording& recording() { return mRecording; }
    // "3 extended ids, 1 CAN FD frame"; empty if nothing was left out.
    QString leftOut() const;

private:
    friend class CandumpReader;

    Recording mRecording;
    int mExtended = 0;
    int mErrors = 0;
    int mRemote = 0;
    int mFd = 0;
};
