#include "bench/gateway/Gateway.h"

#include <QNetworkDatagram>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

namespace {

// Enough for any bench; a bound, since a request costs its sender nothing.
constexpr std::size_t kMostClients = 16;
constexpr std::size_t kMostSubscriptions = 64;

// A tick is a millisecond, the shortest that a timer waits. A socket's usual receive buffer holds some ninety large
// datagrams.
constexpr int kUnpacedDatagramsATick = 2;  // leaves a receiver who is held up 45 ms before anything is lost
constexpr int kDatagramsATick = 32;        // a pace to be kept: what a tick that came late may catch up

void say(const QString& text) {
    std::printf("%s\n", qPrintable(text));
    std::fflush(stdout);
}

void sayRequest(const ForwardRequest& request, const QHostAddress& sender) {
    say(QStringLiteral("%1: %2 bus %3 id 0x%4")
            .arg(sender.toString(), request.start ? QStringLiteral("start") : QStringLiteral("stop"))
            .arg(request.address.bus)
            .arg(request.address.id, 3, 16, QLatin1Char('0')));
}

}  // namespace

Gateway::Gateway(const Recording& recording, const GatewaySettings& settings, const Faults& faults)
    : mRecording(recording), mSettings(settings), mFaults(faults) {
    mTimer.setSingleShot(true);
    mTimer.setTimerType(Qt::PreciseTimer);
    connect(&mTimer, &QTimer::timeout, this, &Gateway::forwardWhatIsDue);
    connect(&mSocket, &QUdpSocket::readyRead, this, &Gateway::receive);
}

bool Gateway::listen(QString* error) {
    if (mSocket.bind(mSettings.address, mSettings.requestPort, QUdpSocket::DontShareAddress))
        return true;
    *error = QStringLiteral("%1 port %2: %3")
                 .arg(mSettings.address.toString())
                 .arg(mSettings.requestPort)
                 .arg(mSocket.errorString());
    return false;
}

void Gateway::receive() {
    // A little more than a request has, to know what is too long for one.
    constexpr qint64 kMostBytes = 64;
    while (mSocket.hasPendingDatagrams()) {
        const QNetworkDatagram datagram = mSocket.receiveDatagram(kMostBytes);
        if (datagram.isValid())
            handle(datagram.data(), datagram.senderAddress(), std::uint16_t(datagram.senderPort()));
    }
}

void Gateway::handle(const QByteArray& datagram, const QHostAddress& sender, std::uint16_t senderPort) {
    ++mCounts.requests;
    const auto request = readRequest(std::as_bytes(std::span(datagram.constData(), std::size_t(datagram.size()))));
    if (!request || (request->start && !start(*request, sender, senderPort))) {
        ++mCounts.refused;
        return;
    }
    if (!request->start)
        stop(*request, sender);
    sendAcknowledgement(*request, sender);
    forwardWhatIsDue();
}

// False if there are too many already.
bool Gateway::start(const ForwardRequest& request, const QHostAddress& sender, std::uint16_t senderPort) {
    const quint32 key = sender.toIPv4Address();
    auto found = mClients.find(key);
    if (found != mClients.end() && found->second.port != senderPort)
        mClients.erase(std::exchange(found, mClients.end()));
    if (found == mClients.end()) {
        if (mClients.size() >= kMostClients)
            return false;
        Client client{senderPort, Subscriptions(mSettings.forwardEverything), Replay(mRecording, mSettings.replay), {}};
        client.clock.start();
        found = mClients.emplace(key, std::move(client)).first;
    }
    Subscriptions& subscriptions = found->second.subscriptions;
    if (subscriptions.contains(request.address))
        return true;
    if (subscriptions.count() >= kMostSubscriptions)
        return false;
    subscriptions.add(request.address);
    sayRequest(request, sender);
    return true;
}

void Gateway::stop(const ForwardRequest& request, const QHostAddress& sender) {
    const auto found = mClients.find(sender.toIPv4Address());
    if (found == mClients.end() || !found->second.subscriptions.contains(request.address))
        return;
    found->second.subscriptions.remove(request.address);
    if (found->second.subscriptions.empty())
        mClients.erase(found);
    sayRequest(request, sender);
}

void Gateway::forwardWhatIsDue() {
    constexpr std::int64_t kLongestWaitUs = 60'000'000;
    std::optional<std::int64_t> wait;
    for (auto& [address, client] : mClients) {
        if (const auto due = forwardTo(client, QHostAddress(address)))
            wait = std::min(wait.value_or(kLongestWaitUs), *due - client.us());
    }
    if (wait)
        mTimer.start(std::max(1, int((*wait + 999) / 1000)));
    else
        mTimer.stop();
}

// When there will be more, on the client's clock.
std::optional<std::int64_t> Gateway::forwardTo(Client& client, const QHostAddress& address) {
    for (int left = mostDatagramsATick(); left > 0; --left) {
        const std::vector<CanFrame> frames = client.replay.take(client.us(), client.subscriptions);
        if (frames.empty())
            return client.replay.dueUs();
        sendFrames(frames, address);
    }
    return 0;
}

int Gateway::mostDatagramsATick() const {
    const auto rate = mSettings.replay.framesPerSecond;
    if (rate == 0.0)
        return kUnpacedDatagramsATick;
    const double needed = rate.value_or(0.0) / 1000.0 / mSettings.replay.framesPerDatagram;
    return std::max(kDatagramsATick, int(std::ceil(2.0 * needed)));
}

void Gateway::sendAcknowledgement(const ForwardRequest& request, const QHostAddress& to) {
    send(Faults::Channel::Acknowledgements, acknowledgementOf(request), to, 0);
}

void Gateway::sendFrames(const std::vector<CanFrame>& frames, const QHostAddress& to) {
    send(Faults::Channel::Datagrams, datagramOf(frames, mSettings.headerStartMs), to, qint64(frames.size()));
}

void Gateway::send(Faults::Channel channel, const QByteArray& bytes, const QHostAddress& to, qint64 frames) {
    for (const Faults::Parcel& parcel : mFaults.strike(channel, bytes)) {
        if (parcel.delayMs == 0) {
            sendNow(channel, parcel.bytes, to, frames);
            continue;
        }
        QTimer::singleShot(parcel.delayMs, Qt::PreciseTimer, this,
                           [this, channel, late = parcel.bytes, to, frames] { sendNow(channel, late, to, frames); });
    }
}

void Gateway::sendNow(Faults::Channel channel, const QByteArray& bytes, const QHostAddress& to, qint64 frames) {
    const bool acknowledgement = channel == Faults::Channel::Acknowledgements;
    if (mSocket.writeDatagram(bytes, to, acknowledgement ? mSettings.ackPort : mSettings.dataPort) != bytes.size()) {
        ++mCounts.unsent;
        return;
    }
    if (acknowledgement) {
        ++mCounts.acknowledgements;
    } else {
        ++mCounts.datagrams;
        mCounts.frames += frames;
    }
}

QString Gateway::summary() const {
    QStringList parts{QStringLiteral("requests %1").arg(mCounts.requests)};
    if (mCounts.refused > 0)
        parts += QStringLiteral("refused %1").arg(mCounts.refused);
    parts += QStringLiteral("acknowledgements %1").arg(mCounts.acknowledgements);
    parts += QStringLiteral("datagrams %1").arg(mCounts.datagrams);
    parts += QStringLiteral("frames sent %1").arg(mCounts.frames);
    if (mCounts.unsent > 0)
        parts += QStringLiteral("could not be sent %1").arg(mCounts.unsent);
    for (std::size_t i = 0; i < kFaultCount; ++i) {
        if (const int strikes = mFaults.strikes(Fault(i)))
            parts += QStringLiteral("%1 %2").arg(nameOf(Fault(i))).arg(strikes);
    }
    return parts.join(QStringLiteral(", "));
}
