#include "bench/measuring/screen/AnswerServer.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

AnswerServer::AnswerServer(QMap<QByteArray, QByteArray> answers)
    : mAnswers(std::move(answers)), mSocket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* address = reinterpret_cast<sockaddr*>(&place);
    socklen_t size = sizeof place;
    if (::bind(mSocket, address, size) != 0 || ::listen(mSocket, 8) != 0 || ::getsockname(mSocket, address, &size) != 0)
        return;
    mPort = ntohs(place.sin_port);
    mThread = std::thread([this] { serve(); });
}

AnswerServer::~AnswerServer() {
    // Wakes the thread from its waiting.
    ::shutdown(mSocket, SHUT_RDWR);
    if (mThread.joinable())
        mThread.join();
    ::close(mSocket);
}

QString AnswerServer::url(const QByteArray& path) const {
    return mPort == 0 ? QString() : QStringLiteral("http://127.0.0.1:%1%2").arg(mPort).arg(QString::fromLatin1(path));
}

QByteArray AnswerServer::answer(const char* status, const QByteArray& body) {
    return QByteArray("HTTP/1.1 ") + status + "\r\nContent-Length: " + QByteArray::number(body.size()) +
           "\r\nConnection: close\r\n\r\n" + body;
}

void AnswerServer::serve() const {
    for (int connection = ::accept4(mSocket, nullptr, nullptr, SOCK_CLOEXEC); connection >= 0;
         connection = ::accept4(mSocket, nullptr, nullptr, SOCK_CLOEXEC)) {
        respond(connection);
        ::close(connection);
    }
}

void AnswerServer::respond(int connection) const {
    QByteArray request;
    while (!request.contains("\r\n\r\n")) {
        char bytes[4096];
        const ssize_t count = ::recv(connection, bytes, sizeof bytes, 0);
        if (count <= 0)
            return;
        request.append(bytes, int(count));
    }
    const QByteArray answer = mAnswers.value(request.split(' ').value(1));
    for (qsizetype sent = 0; sent < answer.size();) {
        const ssize_t count =
            ::send(connection, answer.constData() + sent, std::size_t(answer.size() - sent), MSG_NOSIGNAL);
        if (count <= 0)
            return;
        sent += count;
    }
}
