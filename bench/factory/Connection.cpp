#include "bench/factory/Connection.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// How long a peer that is told to stop may go on sending before the connection is reset under it.
constexpr auto kDrainTime = std::chrono::seconds(2);

using AddressCall = int (*)(int, sockaddr*, socklen_t*);

void readAddress(AddressCall call, int socket, std::string& ip, int& port) {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    std::array<char, INET_ADDRSTRLEN> text{};
    if (call(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0 || address.sin_family != AF_INET)
        return;
    if (inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size()))
        ip = text.data();
    port = ntohs(address.sin_port);
}

// The same bytes every time: control characters and high bytes, with the line ends a careless parser waits for.
std::string garbage() {
    std::string bytes;
    unsigned state = 1;
    for (int i = 0; i < 512; ++i) {
        state = state * 1664525U + 1013904223U;
        bytes += static_cast<char>(state >> 24U);
    }
    return bytes + "\r\n\r\n{";
}

}  // namespace

Connection::Connection(int socket, std::chrono::milliseconds timeout) : mSocket(socket), mTimeout(timeout) {}

Connection::~Connection() {
    ::close(mSocket);
}

void Connection::spoil(const Fault& fault) {
    mFault = fault;
}

void Connection::finish() {
    switch (mFault.kind) {
        case Fault::Kind::Cut: {
            const size_t part = mFault.number > 0 ? static_cast<size_t>(mFault.number) : mHeldBack.size() / 2;
            sendAll(mHeldBack.data(), std::min(part, mHeldBack.size()));
            break;
        }
        case Fault::Kind::Garbage: {
            const std::string bytes = garbage();
            sendAll(bytes.data(), bytes.size());
            break;
        }
        default:
            break;
    }
    drain();
}

bool Connection::is_readable() const {
    return mReadPosition < mReadEnd || await(POLLIN);
}

bool Connection::is_writable() const {
    return await(POLLOUT);
}

ssize_t Connection::read(char* data, size_t size) {
    if (mReadPosition == mReadEnd) {
        if (!await(POLLIN))
            return -1;
        const ssize_t count = ::recv(mSocket, mReadBuffer.data(), mReadBuffer.size(), 0);
        if (count <= 0)
            return count;
        mReadPosition = 0;
        mReadEnd = static_cast<size_t>(count);
    }
    const size_t count = std::min(size, mReadEnd - mReadPosition);
    std::memcpy(data, mReadBuffer.data() + mReadPosition, count);
    mReadPosition += count;
    return static_cast<ssize_t>(count);
}

ssize_t Connection::write(const char* data, size_t size) {
    if (mFault.kind != Fault::Kind::None) {
        mHeldBack.append(data, size);
        return static_cast<ssize_t>(size);
    }
    return sendAll(data, size) ? static_cast<ssize_t>(size) : -1;
}

void Connection::get_remote_ip_and_port(std::string& ip, int& port) const {
    readAddress(::getpeername, mSocket, ip, port);
}

void Connection::get_local_ip_and_port(std::string& ip, int& port) const {
    readAddress(::getsockname, mSocket, ip, port);
}

bool Connection::await(short events) const {
    pollfd waiting{mSocket, events, 0};
    int ready = 0;
    do {
        ready = ::poll(&waiting, 1, static_cast<int>(mTimeout.count()));
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

bool Connection::sendAll(const char* data, size_t size) {
    while (size > 0) {
        if (!await(POLLOUT))
            return false;
        const ssize_t count = ::send(mSocket, data, size, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0 && (errno == EAGAIN || errno == EINTR))
            continue;
        if (count < 0)
            return false;
        data += count;
        size -= static_cast<size_t>(count);
    }
    return true;
}

// Closing a socket with unread bytes resets the connection, and the reset may overtake the answer. So what the peer
// still sends is read and thrown away, for a bounded time.
void Connection::drain() {
    ::shutdown(mSocket, SHUT_WR);
    const auto end = std::chrono::steady_clock::now() + kDrainTime;
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        pollfd waiting{mSocket, POLLIN, 0};
        if (left.count() <= 0 || ::poll(&waiting, 1, static_cast<int>(left.count())) <= 0)
            return;
        if (::recv(mSocket, mReadBuffer.data(), mReadBuffer.size(), 0) <= 0)
            return;
    }
}
