#include "bench/factory/FactoryServer.h"

#include "bench/factory/Connection.h"
#include "bench/factory/FrontPage.h"
#include "bench/factory/PackageContents.h"
#include "bench/factory/PackageStore.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <optional>
#include <sys/socket.h>
#include <thread>

namespace {

using namespace std::chrono_literals;

constexpr auto kSilence = 10s;
constexpr size_t kJsonLimit = 65536;
const char kText[] = "text/plain; charset=utf-8";
const char kJson[] = "application/json";
const std::string kPackages = "/packages/";

// The connection whose request the present thread is answering; the library does not hand it to the handlers.
thread_local Connection* tConnection = nullptr;

struct Route {
    const char* method;
    std::string path;
};

const Route kRoutes[] = {
    {"POST", "/vdt/upload"},
    {"POST", "/vdt/sonvara_files"},
    {"POST", "/bench/fault"},
    {"GET", "/vdt/static"},
    {"GET", "/"},
};

void refuse(httplib::Response& response, int status, const std::string& reason) {
    response.status = status;
    response.set_content(reason + "\n", kText);
}

// A small JSON object; null, and the response set, when the body is anything else.
std::optional<QJsonObject> readObject(httplib::Response& response, const httplib::ContentReader& reader) {
    QByteArray body;
    bool tooLong = false;
    const bool complete = reader([&](const char* data, size_t size) {
        tooLong = size_t(body.size()) + size > kJsonLimit;
        if (!tooLong)
            body.append(data, int(size));
        return !tooLong;
    });
    if (tooLong) {
        refuse(response, 413, "The body is longer than 64 KiB.");
        return std::nullopt;
    }
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (!complete || !document.isObject()) {
        refuse(response, 400, "The body is no JSON object: " + error.errorString().toStdString());
        return std::nullopt;
    }
    return document.object();
}

QString packageNameIn(const QString& url) {
    const QString path = QUrl(url).path(QUrl::FullyDecoded);
    const QString before = QString::fromStdString(kPackages);
    return path.startsWith(before) ? path.mid(before.size()) : QString();
}

QJsonObject describe(const QString& path) {
    const PackageContents contents = PackageContents::of(path);
    const qint64 size = QFileInfo(path).size();
    QJsonObject answer{{QStringLiteral("VDT Feedback"), contents.describe(size)},
                       {QStringLiteral("bytes"), size},
                       {QStringLiteral("files"), QJsonArray::fromStringList(contents.files)},
                       {QStringLiteral("test"), contents.testTag}};
    if (!contents.recordings.empty())
        answer.insert(QStringLiteral("seconds"), contents.recordings.front().seconds);
    return answer;
}

// The library's own options share the port with any other server that asks for it; two factories on one port would
// each see half of the packages.
void setSocketOptions(socket_t socket) {
    const int on = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

}  // namespace

// One upload: sorts the parts of the body as they pass, and keeps the field "data".
class FactoryServer::Upload {
public:
    Upload(PackageStore& store, httplib::Response& response, qint64 limit)
        : mStore(store), mResponse(response), mLimit(limit) {}

    bool part(const httplib::MultipartFormData& header) {
        mInData = header.name == "data";
        if (!mInData)
            return true;
        if (mIncoming)
            return fail(400, "There is more than one field \"data\".");
        if (header.filename.empty())
            return fail(400, "The field \"data\" is no file.");
        mName = QString::fromStdString(header.filename);
        mIncoming = mStore.receive();
        return mIncoming ? true : fail(507, "The disk takes no more.");
    }

    bool bytes(const char* data, size_t size) {
        mSize += qint64(size);
        if (mSize > mLimit)
            return fail(413, "The upload is larger than this server takes.");
        if (mInData && !mIncoming->write(std::as_bytes(std::span(data, size))))
            return fail(507, "The disk takes no more.");
        return true;
    }

    // The name under which the archive is stored; null, and the response set, when it is not.
    std::optional<QString> keep(bool complete) {
        std::optional<QString> name;
        if (mFailure == 0 && !complete)
            fail(400, "The upload is not complete.");
        if (mFailure == 0 && !mIncoming)
            fail(400, "There is no field \"data\".");
        if (mFailure == 0 && !(name = mIncoming->keepAs(mName)))
            fail(507, "The disk takes no more.");
        // Said only now: the reader sets a status of its own when it is told to stop.
        if (mFailure != 0)
            refuse(mResponse, mFailure, mReason);
        return name;
    }

private:
    bool fail(int status, const std::string& reason) {
        mFailure = status;
        mReason = reason;
        return false;
    }

    PackageStore& mStore;
    httplib::Response& mResponse;
    const qint64 mLimit;
    std::unique_ptr<PackageStore::Incoming> mIncoming;
    QString mName;
    qint64 mSize = 0;
    bool mInData = false;
    int mFailure = 0;
    std::string mReason;
};

FactoryServer::FactoryServer(PackageStore& store, FaultBoard& faults, const QByteArray& staticList, qint64 uploadLimit)
    : mStore(store), mFaults(faults), mStaticList(staticList.toStdString()), mUploadLimit(uploadLimit) {
    set_socket_options(setSocketOptions);
    set_logger([](const httplib::Request& request, const httplib::Response& response) {
        std::fprintf(stderr, "%s %s %d\n", request.method.c_str(), request.target.c_str(), response.status);
    });
    set_pre_routing_handler([this](const auto& request, auto& response) { return refuseUnknown(request, response); });
    route();
}

void FactoryServer::route() {
    using httplib::ContentReader;
    using httplib::Request;
    using httplib::Response;
    Post("/vdt/upload", [this](const Request& request, Response& response, const ContentReader& reader) {
        answer(Endpoint::Upload, response, [&] { takeUpload(request, response, reader); });
    });
    Post("/vdt/sonvara_files", [this](const Request&, Response& response, const ContentReader& reader) {
        answer(Endpoint::SonvaraFiles, response, [&] { registerPackage(response, reader); });
    });
    Post("/bench/fault",
         [this](const Request&, Response& response, const ContentReader& reader) { setFault(response, reader); });
    Get("/vdt/static", [this](const Request&, Response& response) {
        answer(Endpoint::Static, response, [&] { response.set_content(mStaticList, kJson); });
    });
    Get(kPackages + ".*", [this](const Request& request, Response& response) { sendPackage(request, response); });
    Get("/", [this](const Request&, Response& response) {
        response.set_content(frontPage(mStore).toStdString(), "text/html; charset=utf-8");
    });
}

bool FactoryServer::bind(int port, QString* error) {
    const char* const host = "127.0.0.1";
    mPort = port;
    if (port == 0)
        mPort = bind_to_any_port(host);
    else if (!bind_to_port(host, port))
        mPort = -1;
    if (mPort < 0)
        *error = QStringLiteral("cannot listen on port %1: %2").arg(port).arg(QString::fromLocal8Bit(strerror(errno)));
    return mPort >= 0;
}

void FactoryServer::run() {
    listen_after_bind();
    mEnded = true;
}

void FactoryServer::stop() {
    {
        const std::lock_guard lock(mMutex);
        mStopping = true;
        for (const int socket : mOpenSockets)
            ::shutdown(socket, SHUT_RDWR);
    }
    mStopped.notify_all();
    // The library forgets a stop that comes before it has begun to accept.
    while (!is_running() && !mEnded)
        std::this_thread::sleep_for(1ms);
    Server::stop();
}

bool FactoryServer::process_and_close_socket(socket_t socket) {
    Connection connection(socket, kSilence);
    {
        const std::lock_guard lock(mMutex);
        if (mStopping)
            return false;
        mOpenSockets.insert(socket);
    }
    tConnection = &connection;
    bool closed = false;
    const bool answered = process_request(connection, true, closed, nullptr);
    connection.finish();
    tConnection = nullptr;
    const std::lock_guard lock(mMutex);
    mOpenSockets.erase(socket);
    return answered;
}

// Said before the library reads the body: for an address without a handler it would gather all of it in memory.
httplib::Server::HandlerResponse FactoryServer::refuseUnknown(const httplib::Request& request,
                                                              httplib::Response& response) const {
    const std::string method = request.method == "HEAD" ? "GET" : request.method;
    bool known = request.path.rfind(kPackages, 0) == 0;
    bool allowed = known && method == "GET";
    for (const Route& route : kRoutes) {
        known |= request.path == route.path;
        allowed |= request.path == route.path && method == route.method;
    }
    if (allowed)
        return HandlerResponse::Unhandled;
    refuse(response, known ? 405 : 404, known ? "This address does not take " + method + "." : "Nothing is here.");
    return HandlerResponse::Handled;
}

void FactoryServer::answer(Endpoint endpoint, httplib::Response& response, const std::function<void()>& handle) {
    const Fault fault = mFaults.take(endpoint);
    if (fault.kind == Fault::Kind::Refuse) {
        tConnection->spoil(fault);
        return;
    }
    if (fault.kind == Fault::Kind::Status && fault.number >= 400) {
        refuse(response, fault.number, "Refused, as asked for.");
        return;
    }
    handle();
    switch (fault.kind) {
        case Fault::Kind::Delay: {
            std::unique_lock lock(mMutex);
            mStopped.wait_for(lock, std::chrono::milliseconds(fault.number), [this] { return mStopping; });
            break;
        }
        case Fault::Kind::Cut:
        case Fault::Kind::Garbage:
            tConnection->spoil(fault);
            break;
        case Fault::Kind::BadBody:
            response.body.resize(response.body.size() / 2);
            break;
        case Fault::Kind::Empty:
            response.body.clear();
            break;
        case Fault::Kind::Status:
            response.status = fault.number;
            break;
        case Fault::Kind::NoUrl:
            response.body = "Stored.";
            break;
        case Fault::Kind::None:
        case Fault::Kind::Refuse:
            break;
    }
}

void FactoryServer::takeUpload(const httplib::Request& request, httplib::Response& response,
                               const httplib::ContentReader& reader) {
    if (!request.is_multipart_form_data()) {
        refuse(response, 400, "The upload is no multipart form.");
        return;
    }
    Upload upload(mStore, response, mUploadLimit);
    const bool complete = reader([&](const httplib::MultipartFormData& header) { return upload.part(header); },
                                 [&](const char* data, size_t size) { return upload.bytes(data, size); });
    if (const auto name = upload.keep(complete)) {
        response.status = 200;
        response.set_content("http://127.0.0.1:" + std::to_string(mPort) + kPackages + name->toStdString(), kText);
    }
}

void FactoryServer::registerPackage(httplib::Response& response, const httplib::ContentReader& reader) {
    const auto object = readObject(response, reader);
    if (!object)
        return;
    // Whatever stood behind the URL in the upload's answer comes along with it.
    const QString url = object->value(QStringLiteral("url")).toString().trimmed();
    if (!url.startsWith(QStringLiteral("http://"))) {
        refuse(response, 400, "The member \"url\" is no http URL.");
        return;
    }
    const QString name = packageNameIn(url);
    const auto path = mStore.find(name);
    if (!path) {
        refuse(response, 404, "This server has no archive at that URL.");
        return;
    }
    const QByteArray answer = QJsonDocument(describe(*path)).toJson(QJsonDocument::Compact);
    if (!mStore.setRegistration(name, answer)) {
        refuse(response, 507, "The disk takes no more.");
        return;
    }
    response.status = 201;
    response.set_content(answer.toStdString(), kJson);
}

void FactoryServer::sendPackage(const httplib::Request& request, httplib::Response& response) const {
    const auto path = mStore.find(QString::fromStdString(request.path.substr(kPackages.size())));
    const auto file = std::make_shared<QFile>(path.value_or(QString()));
    if (!path || !file->open(QIODevice::ReadOnly)) {
        refuse(response, 404, "This server has no archive of that name.");
        return;
    }
    response.set_header("Content-Disposition", "attachment");
    if (file->size() == 0)
        return;
    response.set_content_provider(size_t(file->size()), "application/gzip",
                                  [file](size_t offset, size_t length, httplib::DataSink& sink) {
                                      constexpr size_t kBlock = 65536;
                                      if (!file->seek(qint64(offset)))
                                          return false;
                                      const QByteArray block = file->read(qint64(std::min(length, kBlock)));
                                      return !block.isEmpty() && sink.write(block.constData(), size_t(block.size()));
                                  });
}

void FactoryServer::setFault(httplib::Response& response, const httplib::ContentReader& reader) {
    const auto object = readObject(response, reader);
    if (!object)
        return;
    const auto endpoint = endpointFromName(object->value(QStringLiteral("endpoint")).toString());
    const auto fault = Fault::parse(object->value(QStringLiteral("fault")).toString());
    const int times = object->value(QStringLiteral("times")).toInt(0);
    if (!endpoint || !fault || times < 0 || !mFaults.set(*endpoint, *fault, times)) {
        refuse(response, 400, "Wanted: {\"endpoint\": …, \"fault\": …, \"times\": N}; see factory-server --help.");
        return;
    }
    refuse(response, 200, (nameOf(*endpoint) + QStringLiteral("=") + fault->toString()).toStdString());
}
