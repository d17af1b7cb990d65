// A capture run: the sockets, the request, its acknowledgement, and the end.

#include "nvh/capture/NvhCanEth.h"

#include "nvh/capture/ErrorLog.h"
#include "nvh/capture/LoggerRunning.h"
#include "nvh/engine/Settings.h"

#include <HelixDash/services/Logger.h>
#include <HelixDash/services/RuntimeEnv.h>

#include <QThread>

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr timeval kReceiveTimeout{0, 500000};
constexpr int kBindAttempts = 101;
// Receives that may fail before the request is repeated, and repetitions before the gateway is given up.
constexpr int kPatientReceives = 6;
constexpr int kRetransmissions = 11;

sockaddr_in internetAddress(quint16 port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    return address;
}

// A socket counts as bound once any attempt has succeeded: the attempts after that one fail.
struct Binding {
    bool bound = false;
    int error = 0;

    void attempt(int socket, const sockaddr_in& address) {
        if (::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
            bound = true;
        else
            error = errno;
    }
};

void closeSocket(int& socket) {
    if (socket >= 0)
        ::close(socket);
    socket = -1;
}

}  // namespace

NvhCanEth::NvhCanEth(unsigned char bus, unsigned short messageId, const char* fileName)
    : mBus(bus), mMessageId(messageId), mFileName(QString::fromLocal8Bit(fileName)) {}

NvhCanEth::~NvhCanEth() {
    deinitSockets();
}

void NvhCanEth::startLogging() {
    Logger(this, "INFO") << "startLogging";
    if (!loggerRunning) {
        Logger(this, "INFO") << "\t called when loggerRunning = false";
        return;
    }
    initSockets();
    fillSocketStructures();
    mForwardingState = canEth::StartForwarding;
    Logger(this, "INFO") << "NvhCanEth::StartLogging() sending canEthEnable";
    sendCanEthEnable();
    if (initFile() && receiveACK()) {
        emit acknowledged();
        readMsg();
    } else {
        emit ackFailed();
        stopLogging();
    }
}

void NvhCanEth::initSockets() {
    mControlSocket = createUDPSocket();
    mAckSocket = createUDPSocket();
    mDataSocket = createUDPSocket();

    const auto set = [this](int socket, int option, const auto& value, const char* message) {
        if (::setsockopt(socket, SOL_SOCKET, option, &value, sizeof value) != 0)
            logWithErrorNum(QLatin1String(message));
    };
    const int yes = 1;
    set(mControlSocket, SO_REUSEADDR, yes, "Error SockOpt Reuse: controlSock:");
    set(mAckSocket, SO_RCVTIMEO, kReceiveTimeout, "Error SockOpt Timeout: ackSock:");
    set(mAckSocket, SO_REUSEADDR, yes, "Error SockOpt Reuse: ackSock:");
    set(mDataSocket, SO_RCVTIMEO, kReceiveTimeout, "Error SockOpt Timeout: dataSock:");
    set(mDataSocket, SO_REUSEADDR, yes, "Error SockOpt Reuse: dataSock:");
}

int NvhCanEth::createUDPSocket() {
    // Closed in child programs: the recorder starts some, and one that outlived a run would hold on to its ports.
    const int descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_UDP);
    if (descriptor < 0)
        Logger(this, "ERROR") << "ErrorCreating Socket!";
    return descriptor;
}

bool NvhCanEth::fillSocketStructures() {
    const QByteArray gateway = RuntimeEnv::instance()->gatewayAddress().toString().toLocal8Bit();
    mGatewayAddress = internetAddress(canEth::kGatewayPort);
    if (::inet_aton(gateway.constData(), &mGatewayAddress.sin_addr) == 0) {
        Logger(this, "ERROR") << "Error on Inet_Aton";
        return false;
    }
    mAckAddress = internetAddress(canEth::kAckPort);
    mDataAddress = internetAddress(canEth::kDataPort);
    bindSockets();
    return true;
}

void NvhCanEth::bindSockets() {
    Binding ack;
    Binding data;
    for (int attempt = 0; attempt < kBindAttempts && !(ack.bound && data.bound); ++attempt) {
        ack.attempt(mAckSocket, mAckAddress);
        data.attempt(mDataSocket, mDataAddress);
    }
    if (ack.bound && data.bound)
        Logger(this, "INFO") << "Bind Success for ACK and Data!";
    // Each with its own reason: by now errno may hold the other socket's.
    if (!ack.bound) {
        errno = ack.error;
        logWithErrorNum(QStringLiteral("Ack Bind Failed!"));
    }
    if (!data.bound) {
        errno = data.error;
        logWithErrorNum(QStringLiteral("Data Bind Failed"));
    }
}

bool NvhCanEth::sendCanEthEnable() {
    const auto request = canEth::encodeRequest(forwarding());
    // Sixteen bits on purpose: a send that failed altogether counts as sent, and the gateway's silence will tell.
    const auto sent = quint16(::sendto(mControlSocket, request.data(), request.size(), 0,
                                       reinterpret_cast<const sockaddr*>(&mGatewayAddress), sizeof mGatewayAddress));
    if (sent < request.size()) {
        Logger(this, "ERROR") << "Error Writing to Socket";
        return false;
    }
    Logger(this, "INFO") << "CanEth Request!";
    printInfo(canEth::kRequestCommand, forwarding(), sent);
    return true;
}

bool NvhCanEth::receiveACK() {
    std::array<std::byte, canEth::kAckCapacity> buffer;
    int receives = 0;
    int retransmissions = 0;
    // The last repetition is not waited for.
    while (retransmissions < kRetransmissions) {
        const ssize_t received = ::recvfrom(mAckSocket, buffer.data(), buffer.size(), 0, nullptr, nullptr);
        const auto bytes = std::span<const std::byte>(buffer).first(received > 0 ? std::size_t(received) : 0);
        if (canEth::decodeAcknowledgement(bytes) == forwarding()) {
            Logger(this, "INFO") << "ACK Received!";
            printInfo(canEth::kAckCommand, forwarding(), int(received));
            return true;
        }
        if (receives >= kPatientReceives) {
            Logger(this, "INFO") << "No ACK RCVD, Re-transmitting Request";
            ++retransmissions;
            sendCanEthEnable();
        }
        ++receives;
    }
    Logger(this, "ERROR") << "Unable to Recv ACK!!";
    return false;
}

void NvhCanEth::stopLogging() {
    if (cLogVerbose.value())
        Logger(this, "INFO") << "stopLogging";
    mForwardingState = canEth::StopForwarding;
    // Nobody confirms it, so it is said twice.
    sendCanEthEnable();
    sendCanEthEnable();
    emit finished();
    Logger(this, "INFO") << "NvhCanEth thread about to quit!";
    thread()->quit();
}

void NvhCanEth::deinitSockets() {
    closeSocket(mAckSocket);
    closeSocket(mControlSocket);
    closeSocket(mDataSocket);
}

void NvhCanEth::printInfo(unsigned int command, unsigned char state, unsigned char bus, unsigned short id, int bytes) {
    Logger(this, "INFO") << "\tcmd:" << ntohl(command) << "state:" << int(state) << "bus:" << int(bus)
                         << "id:" << ntohs(id) << "BYTES:" << bytes;
}

void NvhCanEth::printInfo(quint32 command, const canEth::Forwarding& forwarding, int bytes) {
    printInfo(htonl(command), forwarding.state, forwarding.bus, htons(forwarding.messageId), bytes);
}

void NvhCanEth::logWithErrorNum(QString message) {
    logErrorNumber(this, message);
}
