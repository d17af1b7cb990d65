// The frame log: what the gateway forwards, as lines of time and motor speed.

#include "nvh/capture/LoggerRunning.h"
#include "nvh/capture/NvhCanEth.h"

#include <HelixDash/services/Logger.h>

#include <QtEndian>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <limits>
#include <sys/socket.h>

namespace {

constexpr auto kLostLine = "storeCanMessage: Can't Write to File!";

// At most; both numbers fit whatever they are.
constexpr std::size_t kTimeDigits = std::numeric_limits<unsigned long>::digits10 + 1;
constexpr std::size_t kRpmDigits = std::numeric_limits<unsigned short>::digits10 + 1;

}  // namespace

bool NvhCanEth::initFile() {
    FILE* file = std::fopen(mFileName.toLocal8Bit().constData(), "w");
    if (!file) {
        Logger(this, "ERROR") << "Can't Initialize Log File";
        return false;
    }
    std::fclose(file);
    return true;
}

bool NvhCanEth::readMsg() {
    Logger(this, "INFO") << "Recording CAN Data...";
    std::array<std::byte, canEth::kDatagramCapacity> buffer;
    int lastError = 0;
    while (loggerRunning) {
        const int received = int(::recvfrom(mDataSocket, buffer.data(), buffer.size(), 0, nullptr, nullptr));
        if (received >= int(canEth::kHeaderSize)) {
            processDatagram(std::span<const std::byte>(buffer).first(std::size_t(received)));
            continue;
        }
        // A gateway that is silent for minutes is one line, not a line every half second.
        const int error = errno;
        if (error == lastError)
            continue;
        Logger(this, "ERROR") << "recvfrom() returned " << received << " with error: " << strerror(error);
        lastError = error;
    }
    stopLogging();
    return true;
}

void NvhCanEth::processDatagram(const char* datagram) {
    processDatagram(std::as_bytes(std::span(datagram, canEth::kDatagramCapacity)));
}

void NvhCanEth::processDatagram(std::span<const std::byte> datagram) {
    BigEndianReader reader(datagram);
    const auto header = canEth::readHeader(reader);
    if (!loggerRunning || !header)
        return;
    // Open for one datagram only: what has been received is on the disk, whatever ends the thread.
    openFile();
    if (mBaseTime == 0)
        mBaseTime = header->time;
    quint64 frames = 0;
    unsigned short rpm = mLastMotorRPM;
    for (quint32 record = 0; record < header->count; ++record) {
        const auto frame = canEth::readRecord(reader);
        // The count is the gateway's word; the bytes that came decide.
        if (!frame)
            break;
        if (frame->bus != mBus || frame->messageId != mMessageId)
            continue;
        mLastTime = header->time - mBaseTime + frame->offsetTime;
        rpm = getMotorRPM(frame->data);
        storeCanMessage(mLastTime, rpm);
        ++frames;
    }
    mLastMotorRPM = rpm;
    (closeFile() ? mFramesLogged : mFramesLost) += frames;
}

void NvhCanEth::openFile() {
    mFile = std::fopen(mFileName.toLocal8Bit().constData(), "a");
    if (mFile)
        std::setvbuf(mFile, mFileBuffer.data(), _IOFBF, mFileBuffer.size());
}

bool NvhCanEth::closeFile() {
    if (!mFile)
        return false;
    // All lines of a datagram fit the buffer, so this is where a full disk shows.
    const bool written = std::fclose(mFile) == 0;
    mFile = nullptr;
    if (!written)
        Logger(this, "ERROR") << kLostLine;
    return written;
}

void NvhCanEth::storeCanMessage(unsigned long time, unsigned short rpm) {
    // Digits are the same in every local encoding; thousands of lines a second need no text objects.
    std::array<char, kTimeDigits + 1 + kRpmDigits + 1> line;
    char* next = std::to_chars(line.data(), line.data() + kTimeDigits, time).ptr;
    *next++ = ',';
    next = std::to_chars(next, next + kRpmDigits, rpm).ptr;
    *next++ = '\n';
    if (!mFile || std::fwrite(line.data(), std::size_t(next - line.data()), 1, mFile) < 1)
        Logger(this, "ERROR") << kLostLine;
}

void NvhCanEth::printCanInfo(unsigned char bus, unsigned char len, unsigned short msgId, unsigned short offsetTime,
                             unsigned long data) {
    Logger(this, "INFO") << "bus:" << int(bus) << "len:" << int(len) << "msgId:" << qFromBigEndian(msgId)
                         << "offsetTime:" << qFromBigEndian(offsetTime) << "Data:" << qFromBigEndian(quint64(data));
}

unsigned short NvhCanEth::getMotorRPM(unsigned long data) {
    const auto low = quint8(data >> 24);   // data byte 4
    const auto high = quint8(data >> 16);  // data byte 5
    return quint16(low | high << 8);
}
