#pragma once

#include "bench/gateway/CanFrame.h"
#include "bench/gateway/Faults.h"
#include "bench/gateway/GatewayWire.h"
#include "bench/gateway/Replay.h"
#include "bench/gateway/Subscriptions.h"

#include <QElapsedTimer>
#include <QHostAddress>
#include <QObject>
#include <QTimer>
#include <QUdpSocket>

#include <cstdint>
#include <map>

struct GatewaySettings {
    QHostAddress address = QHostAddress(QHostAddress::LocalHost);
    std::uint16_t requestPort = 20100;
    std::uint16_t ackPort = 20101;
    std::uint16_t dataPort = 20098;
    // Header time at the beginning of a recording. A client takes the time of the first datagram for the one that all
    // others count from, but not if it is 0.
    std::uint32_t headerStartMs = 1000;
    bool forwardEverything = false;
    ReplaySettings replay;
};

// The UDP side of a vehicle's gateway: takes requests, acknowledges them and forwards what they ask for.
//
// The recording begins anew for each client: with the first start request from an address, or from another port of it,
// since only one program there can own the port on which the frames arrive. Repeated starts are acknowledged and change
// nothing. A client that has stopped all it started is forgotten.
//
// All on one event loop. Whatever arrives, and whatever cannot be sent, is at most counted.
class Gateway : public QObject {
    Q_OBJECT
public:
    // The recording must outlive the gateway.
    Gateway(const Recording& recording, const GatewaySettings& settings, const Faults& faults);

    // False, and the reason, if the request port is not to be had.
    bool listen(QString* error);
    std::uint16_t port() const { return mSocket.localPort(); }

    // One line: what came in and went out.
    QString summary() const;

private:
    struct Client {
        std::uint16_t port;
        Subscriptions subscriptions;
        Replay replay;
        QElapsedTimer clock;

        std::int64_t us() const { return clock.nsecsElapsed() / 1000; }
    };
    struct Counts {
        qint64 requests = 0;
        qint64 refused = 0;
        qint64 acknowledgements = 0;
        qint64 datagrams = 0;
        qint64 frames = 0;
        qint64 unsent = 0;
    };

    void receive();
    void handle(const QByteArray& datagram, const QHostAddress& sender, std::uint16_t senderPort);
    bool start(const ForwardRequest& request, const QHostAddress& sender, std::uint16_t senderPort);
    void stop(const ForwardRequest& request, const QHostAddress& sender);
    void forwardWhatIsDue();
    std::optional<std::int64_t> forwardTo(Client& client, const QHostAddress& address);
    int mostDatagramsATick() const;
    void sendAcknowledgement(const ForwardRequest& request, const QHostAddress& to);
    void sendFrames(const std::vector<CanFrame>& frames, const QHostAddress& to);
    // Through the faults; the counter is raised when it has gone out.
    void send(Faults::Channel channel, const QByteArray& bytes, const QHostAddress& to, qint64 frames);
    void sendNow(Faults::Channel channel, const QByteArray& bytes, const QHostAddress& to, qint64 frames);

    const Recording& mRecording;
    GatewaySettings mSettings;
    Faults mFaults;
    QUdpSocket mSocket;
    QTimer mTimer;
    // By IPv4 address.
    std::map<quint32, Client> mClients;
    Counts mCounts;
};
