#pragma once

#include "nvh/Export.h"
#include "nvh/capture/CanEthWire.h"

#include <QObject>
#include <QString>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdio>
#include <netinet/in.h>
#include <span>

// Has the vehicle gateway forward one CAN message over UDP and logs the motor speed it carries: a line
// "time,1/min" per frame, the time in the gateway's unit, counted from the first datagram's header.
//
//     NvhCanEth client(bus, messageId, "/tmp/can.txt");
//     client.moveToThread(&thread);
//     connect(&thread, &QThread::started, &client, &NvhCanEth::startLogging);
//     loggerRunning = true;
//     thread.start();           // acknowledged(), or ackFailed() after about 8.5 s without an answer
//     loggerRunning = false;    // finished() within 0.5 s, and the thread quits
//     thread.wait();
//     client.deinitSockets();
//
// The gateway is RuntimeEnv's. The members run on the thread that the client lives on, except the constructor and what
// says "any thread". One client serves one run. What fails is a line in the log and does not end a run that has been
// acknowledged. The members between startLogging() and stopLogging() are the steps of a run.
class NVH_EXPORT NvhCanEth : public QObject {
    Q_OBJECT
public:
    // Opens nothing. The bus and the message id are the gateway's numbers; the file's name is in the local encoding.
    NvhCanEth(unsigned char bus, unsigned short messageId, const char* fileName);
    // Closes what deinitSockets() has not. The thread has ended.
    ~NvhCanEth() override;

    // Opens the three sockets; a negative descriptor is kept, and what uses it fails in its turn.
    void initSockets();
    int createUDPSocket();
    // Fills the addresses and binds the sockets for acknowledgements and frames. False only if the gateway's address is
    // none; a failed bind is logged.
    bool fillSocketStructures();
    // Sends the request for the present forwarding state. False, with a log line, if it went out in part.
    bool sendCanEthEnable();
    // Waits for the gateway to confirm the last request, and repeats it while the gateway is silent.
    bool receiveACK();
    // Logs the fields of a request or an acknowledgement. Command and id in network byte order.
    void printInfo(unsigned int command, unsigned char state, unsigned char bus, unsigned short id, int bytes);

    // Creates the log file, or empties it. False, with a log line, if that cannot be done.
    bool initFile();
    // Logs frames until loggerRunning is false, then stops. Always true.
    bool readMsg();
    // Logs the matching frames of one datagram, which lies in a buffer of canEth::kDatagramCapacity bytes.
    void processDatagram(const char* datagram);
    // Writes one line to the file that the datagram has open.
    void storeCanMessage(unsigned long time, unsigned short rpm);
    // Logs a frame for debugging. Id, offset time and data in network byte order.
    void printCanInfo(unsigned char bus, unsigned char len, unsigned short msgId, unsigned short offsetTime,
                      unsigned long data);
    // The motor speed in a frame's data, whose byte 0 is the most significant: bytes 4 and 5, low byte first, 1/min.
    unsigned short getMotorRPM(unsigned long data);

    // Closes the sockets; for the owner, after the run.
    void deinitSockets();
    // Logs a failed system call, see logErrorNumber().
    void logWithErrorNum(QString message);

    // What the run has come to: lines in the file, lines that could not be written, the last motor speed. Any thread.
    quint64 framesLogged() const { return mFramesLogged; }
    quint64 framesLost() const { return mFramesLost; }
    unsigned short lastMotorRPM() const { return mLastMotorRPM; }

signals:
    // Kept for other programs; never emitted.
    void errorCapture();
    // The run has ended, however it went.
    void finished();
    // The gateway has confirmed the first request; or it has not, or the log file cannot be created.
    void acknowledged();
    void ackFailed();
    // Kept for other programs; never emitted.
    void stoppingThread();

public slots:
    // The whole run; returns when it has ended. Does nothing while loggerRunning is false.
    void startLogging();
    // Has the gateway stop, and the thread quit.
    void stopLogging();

private:
    void bindSockets();
    canEth::Forwarding forwarding() const { return {mForwardingState, mBus, mMessageId}; }
    void printInfo(quint32 command, const canEth::Forwarding& forwarding, int bytes);
    // The received bytes, and no others.
    void processDatagram(std::span<const std::byte> datagram);
    void openFile();
    // False, with a log line, if what was written did not reach the file.
    bool closeFile();

    quint8 mBus;
    quint16 mMessageId;
    QString mFileName;
    FILE* mFile = nullptr;
    quint8 mForwardingState = canEth::StopForwarding;
    int mControlSocket = -1;
    int mAckSocket = -1;
    int mDataSocket = -1;
    sockaddr_in mGatewayAddress{};
    sockaddr_in mAckAddress{};
    sockaddr_in mDataAddress{};
    quint32 mBaseTime = 0;  // 0: not set yet
    quint32 mLastTime = 0;
    std::array<char, 4096> mFileBuffer;  // of the open file

    std::atomic<quint64> mFramesLogged{0};
    std::atomic<quint64> mFramesLost{0};
    std::atomic<unsigned short> mLastMotorRPM{0};
};
