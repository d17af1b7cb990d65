#pragma once

#include <HelixDash/Export.h>

#include <QObject>

// Handle of the vehicle's audio service. Applications that record hold it as long as they live.
class HELIXDASH_EXPORT Audio : public QObject {
    Q_OBJECT
public:
    // Owned by the framework; UI thread.
    static Audio* proxy();

private:
    Audio() = default;
};
