#include "bench/measuring/Measurements.h"
#include "nvh/capture/LoggerRunning.h"
#include "nvh/capture/NvhCanEth.h"

#include <HelixDash/services/RuntimeEnv.h>

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <QtEndian>

#include <arpa/inet.h>
#include <array>
#include <cstring>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int kFramesPerDatagram = 100;
constexpr int kDatagrams = 10000;
constexpr quint64 kFrames = quint64(kFramesPerDatagram) * kDatagrams;
// So many datagrams are under way at most: fewer than a socket's default buffer holds, so none is lost by the kernel.
constexpr quint64 kWindow = 40;
constexpr int kRounds = 3;

constexpr quint8 kBus = 2;
constexpr quint16 kMessageId = 0x108;
constexpr int kRequestPort = 20100;
constexpr int kAckPort = 20101;
constexpr int kDataPort = 20098;
// Beside the address at which the bench's gateway listens.
constexpr char kGatewayAddress[] = "127.0.0.2";

// A bound UDP socket, closed with its holder.
class UdpSocket {
public:
    UdpSocket(const char* address, int port) : mSocket(::socket(AF_INET, SOCK_DGRAM, 0)) {
        const timeval patience{2, 0};
        ::setsockopt(mSocket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        const sockaddr_in place = addressOf(address, port);
        mBound = ::bind(mSocket, reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0;
    }
    ~UdpSocket() { ::close(mSocket); }
    Q_DISABLE_COPY(UdpSocket)

    bool isBound() const { return mBound; }
    template <typename Bytes>
    ssize_t receive(Bytes& bytes) const {
        return ::recv(mSocket, bytes.data(), bytes.size(), 0);
    }
    template <typename Bytes>
    void send(const Bytes& bytes, int port) const {
        const sockaddr_in place = addressOf("127.0.0.1", port);
        ::sendto(mSocket, bytes.data(), bytes.size(), 0, reinterpret_cast<const sockaddr*>(&place), sizeof place);
    }

private:
    static sockaddr_in addressOf(const char* address, int port) {
        sockaddr_in place{};
        place.sin_family = AF_INET;
        place.sin_port = htons(quint16(port));
        ::inet_aton(address, &place.sin_addr);
        return place;
    }

    int mSocket;
    bool mBound = false;
};

using Datagram = std::array<unsigned char, 12 + 14 * kFramesPerDatagram>;

Datagram makeDatagram() {
    Datagram datagram{};
    qToBigEndian<quint32>(1000, datagram.data() + 4);
    qToBigEndian<quint16>(kFramesPerDatagram, datagram.data() + 8);
    for (int frame = 0; frame < kFramesPerDatagram; ++frame) {
        unsigned char* record = datagram.data() + 12 + 14 * frame;
        record[0] = kBus;
        record[1] = 8;
        qToBigEndian<quint16>(kMessageId, record + 2);
        qToBigEndian<quint16>(quint16(frame), record + 4);
        qToLittleEndian<quint16>(quint16(2000 + frame), record + 10);
    }
    return datagram;
}

// Sends all datagrams as fast as they are logged; seconds until the last frame is. Nothing if frames got lost.
std::optional<double> sendAll(const UdpSocket& from, const std::function<quint64()>& logged) {
    const Datagram datagram = makeDatagram();
    QElapsedTimer clock;
    clock.start();
    const auto waitFor = [&](quint64 frames) {
        while (logged() < frames && !clock.hasExpired(30000))
            std::this_thread::yield();
    };
    for (quint64 sent = 0; sent < kDatagrams; ++sent) {
        if (sent >= kWindow)
            waitFor((sent - kWindow) * kFramesPerDatagram);
        from.send(datagram, kDataPort);
    }
    waitFor(kFrames);
    return logged() == kFrames ? std::optional(double(clock.nsecsElapsed()) / 1e9) : std::nullopt;
}

std::optional<double> clientSeconds(const UdpSocket& gateway, const QString& path) {
    NvhCanEth client(kBus, kMessageId, QFile::encodeName(path).constData());
    QThread thread;
    client.moveToThread(&thread);
    QObject::connect(&thread, &QThread::started, &client, &NvhCanEth::startLogging);
    loggerRunning = true;
    thread.start();
    std::optional<double> seconds;
    std::array<unsigned char, 8> request{};
    if (gateway.receive(request) == ssize_t(request.size())) {
        auto acknowledgement = request;
        qToBigEndian<quint32>(523, acknowledgement.data());
        gateway.send(acknowledgement, kAckPort);
        seconds = sendAll(gateway, [&client] { return client.framesLogged(); });
    }
    loggerRunning = false;
    thread.wait();
    client.deinitSockets();
    // The two requests to stop.
    gateway.receive(request);
    gateway.receive(request);
    return seconds;
}

// What has to be done at the least: receive, take the frames apart, print a line for each.
void logBarely(const UdpSocket& socket, FILE* file, std::atomic<quint64>& logged) {
    std::array<unsigned char, 1500> bytes{};
    while (logged < kFrames) {
        if (socket.receive(bytes) < 12)
            return;
        const quint32 time = qFromBigEndian<quint32>(bytes.data() + 4) - 1000;
        const int frames = qFromBigEndian<quint16>(bytes.data() + 8);
        for (int frame = 0; frame < frames; ++frame) {
            const unsigned char* record = bytes.data() + 12 + 14 * frame;
            if (record[0] == kBus && qFromBigEndian<quint16>(record + 2) == kMessageId)
                std::fprintf(file, "%u,%u\n", time + qFromBigEndian<quint16>(record + 4),
                             unsigned(qFromLittleEndian<quint16>(record + 10)));
        }
        logged += quint64(frames);
    }
}

std::optional<double> bareSeconds(const UdpSocket& gateway, const QString& path) {
    const UdpSocket socket("127.0.0.1", kDataPort);
    FILE* file = std::fopen(QFile::encodeName(path).constData(), "w");
    std::atomic<quint64> logged{0};
    std::thread receiver([&] { logBarely(socket, file, logged); });
    const auto seconds = sendAll(gateway, [&logged] { return logged.load(); });
    receiver.join();
    std::fclose(file);
    return seconds;
}

std::vector<Figure> measure(QString& error) {
    const QTemporaryDir directory;
    const UdpSocket gateway(kGatewayAddress, kRequestPort);
    RuntimeEnv::instance()->setGatewayAddress(QHostAddress(QLatin1String(kGatewayAddress)));
    std::vector<double> client;
    std::vector<double> bare;
    for (int round = 0; round < kRounds && gateway.isBound(); ++round) {
        const auto ours = clientSeconds(gateway, directory.filePath(QStringLiteral("client.txt")));
        const auto theirs = bareSeconds(gateway, directory.filePath(QStringLiteral("bare.txt")));
        if (!ours || !theirs)
            break;
        client.push_back(*ours);
        bare.push_back(*theirs);
    }
    if (client.size() < kRounds) {
        error = QStringLiteral("ports %1, %2 and %3 are not all free, or frames were lost")
                    .arg(kRequestPort)
                    .arg(kAckPort)
                    .arg(kDataPort);
        return {};
    }
    Figure figure;
    figure.what = QStringLiteral("CAN frames logged, none lost");
    figure.measured = QStringLiteral("%1 /s").arg(double(kFrames) / median(client), 0, 'f', 0);
    figure.reference = QStringLiteral("recvfrom and fprintf: %1 /s").arg(double(kFrames) / median(bare), 0, 'f', 0);
    figure.value = median(bare) / median(client);
    figure.atLeast = 0.7;
    return {figure};
}

}  // namespace

Measurement canMeasurement() {
    return {QStringLiteral("can"), measure};
}
