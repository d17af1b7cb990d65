#pragma once

#include <QObject>

class QSocketNotifier;

// SIGINT and SIGTERM as a signal of the event loop, while an object of this class exists. One at a time.
class Interrupt : public QObject {
    Q_OBJECT
public:
    explicit Interrupt(QObject* parent = nullptr);
    // The next SIGINT ends the process again.
    ~Interrupt() override;

signals:
    void interrupted();

private:
    int mSockets[2] = {-1, -1};
    QSocketNotifier* mNotifier = nullptr;
};
