#pragma once

#include "bench/factory/Fault.h"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <httplib.h>
#include <mutex>
#include <set>

class PackageStore;

// The factory's data server as the recorder meets it, on 127.0.0.1.
//
//     POST /vdt/upload         multipart field "data": 200 with the stored archive's URL, and nothing else, in the
//     body POST /vdt/sonvara_files  {"url": …}: 201 with {"VDT Feedback": …}, 404 for an archive that is not here GET
//     /vdt/static         the static test list GET  /packages/NAME      a stored archive GET  /                   what
//     has come in, for a person POST /bench/fault        {"endpoint": …, "fault": …, "times": N}: what to do wrong
//     from now on
//
// Each connection carries one request and is served by a thread of a small pool. An archive passes through in blocks,
// so memory does not depend on its size; every other body is limited.
class FactoryServer : private httplib::Server {
public:
    // `staticList` is the JSON text of the list, `uploadLimit` the most bytes that one upload may bring.
    FactoryServer(PackageStore& store, FaultBoard& faults, const QByteArray& staticList, qint64 uploadLimit);

    // Port 0 takes any free one. False, and the reason, when the port cannot be had.
    bool bind(int port, QString* error);
    int port() const { return mPort; }

    // Serves until `stop()`, called once from any other thread, has ended every connection.
    void run();
    void stop();

private:
    class Upload;

    bool process_and_close_socket(socket_t socket) override;

    void route();
    HandlerResponse refuseUnknown(const httplib::Request& request, httplib::Response& response) const;
    // Runs `handle` and lets the endpoint's present fault have its way with the answer.
    void answer(Endpoint endpoint, httplib::Response& response, const std::function<void()>& handle);

    void takeUpload(const httplib::Request& request, httplib::Response& response, const httplib::ContentReader& reader);
    void registerPackage(httplib::Response& response, const httplib::ContentReader& reader);
    void sendPackage(const httplib::Request& request, httplib::Response& response) const;
    void setFault(httplib::Response& response, const httplib::ContentReader& reader);

    PackageStore& mStore;
    FaultBoard& mFaults;
    const std::string mStaticList;
    const qint64 mUploadLimit;
    int mPort = 0;

    std::mutex mMutex;
    std::condition_variable mStopped;
    std::set<int> mOpenSockets;
    bool mStopping = false;
    std::atomic<bool> mEnded = false;
};
