#include "tools/nvh-tool/Interrupt.h"

#include <QSocketNotifier>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int sWriteEnd = -1;

// All that may be done in a signal handler: a byte into a socket that the event loop watches.
void passOn(int) {
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(sWriteEnd, &byte, 1);
}

}  // namespace

Interrupt::Interrupt(QObject* parent) : QObject(parent) {
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, mSockets) != 0)
        return;
    sWriteEnd = mSockets[0];
    mNotifier = new QSocketNotifier(mSockets[1], QSocketNotifier::Read, this);
    connect(mNotifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        if (::read(mSockets[1], &byte, 1) == 1)
            emit interrupted();
    });
    std::signal(SIGINT, passOn);
    std::signal(SIGTERM, passOn);
}

Interrupt::~Interrupt() {
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    delete mNotifier;
    ::close(mSockets[0]);
    ::close(mSockets[1]);
}
