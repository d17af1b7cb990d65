#pragma once

#include <HelixDash/Export.h>

#include <QHostAddress>

// What the head unit knows of the vehicle's network. Set by the host before an application is loaded, read-only after.
class HELIXDASH_EXPORT RuntimeEnv {
public:
    static RuntimeEnv* instance();

    // The vehicle gateway; null while unknown. Any thread.
    QHostAddress gatewayAddress() const { return mGatewayAddress; }
    // For the host.
    void setGatewayAddress(const QHostAddress& address) { mGatewayAddress = address; }

    Q_DISABLE_COPY(RuntimeEnv)

private:
    RuntimeEnv() = default;
    QHostAddress mGatewayAddress;
};
