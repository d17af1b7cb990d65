#include "host/setup/StopSignals.h"

#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

// A handler may do little more than write a byte: the event loop reads it at the other end.
int pipeEnds[2] = {-1, -1};

bool isIgnored(int signal) {
    struct sigaction action {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

void noteSignal(int signal) {
    const auto number = static_cast<unsigned char>(signal);
    const ssize_t written = ::write(pipeEnds[1], &number, 1);
    static_cast<void>(written);
}

}  // namespace

StopSignals::StopSignals(QObject* parent) : QObject(parent) {
    if (::pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    auto* notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &StopSignals::read);
    for (int signal : kSignals) {
        if (!isIgnored(signal))
            mCaught.push_back(signal);
    }
    rearm();
}

void StopSignals::rearm() {
    struct sigaction action {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART | int(SA_RESETHAND);
    for (int signal : mCaught)
        ::sigaction(signal, &action, nullptr);
}

StopSignals::~StopSignals() {
    for (int signal : mCaught)
        std::signal(signal, SIG_DFL);
    qDeleteAll(children());
    ::close(pipeEnds[0]);
    ::close(pipeEnds[1]);
}

void StopSignals::read() {
    unsigned char number = 0;
    if (::read(pipeEnds[0], &number, 1) == 1)
        emit caught(number);
}
