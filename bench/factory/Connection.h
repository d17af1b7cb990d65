#pragma once

#include "bench/factory/Fault.h"

#include <array>
#include <chrono>
#include <httplib.h>
#include <string>

// One accepted connection, as the HTTP library reads and writes it.
//
// It exists for the faults that cannot be told in HTTP: a connection that closes without a word, an answer that stops
// in the middle, bytes that are no answer at all. Used by one thread; only `shutdown()` on the socket itself comes
// from another, and then every read and write fails.
class Connection : public httplib::Stream {
public:
    // Takes over `socket` and closes it at the end. A peer that is silent for `timeout` is given up.
    Connection(int socket, std::chrono::milliseconds timeout);
    ~Connection() override;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Takes Refuse, Cut or Garbage. From here on what is written is kept back, and `finish()` sends what the fault
    // leaves of it.
    void spoil(const Fault& fault);
    // Sends what is due and closes so that the peer still receives the answer when it has not said all it wanted to.
    void finish();

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char* data, size_t size) override;
    ssize_t write(const char* data, size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    int socket() const override { return mSocket; }

private:
    bool await(short events) const;
    bool sendAll(const char* data, size_t size);
    void drain();

    const int mSocket;
    const std::chrono::milliseconds mTimeout;
    std::array<char, 65536> mReadBuffer;
    size_t mReadPosition = 0;
    size_t mReadEnd = 0;
    Fault mFault;
    std::string mHeldBack;
};
