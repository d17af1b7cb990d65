#include "tests/support/ScriptedServer.h"

#include <QHostAddress>
#include <QRegularExpression>
#include <QTcpSocket>

#include <utility>

ScriptedServer::ScriptedServer() {
    if (!listen(QHostAddress::LocalHost))
        qFatal("No port to listen on: %s", qPrintable(errorString()));
    mPort = serverPort();
    connect(this, &QTcpServer::newConnection, this, [this] {
        QTcpSocket* socket = nextPendingConnection();
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { receive(socket); });
    });
}

QString ScriptedServer::url(const QString& path) const {
    return QStringLiteral("http://127.0.0.1:%1%2").arg(mPort).arg(path);
}

void ScriptedServer::release() {
    mHeld = false;
    for (QTcpSocket* socket : std::exchange(mWaiting, {}))
        respond(socket);
}

void ScriptedServer::receive(QTcpSocket* socket) {
    static const QRegularExpression lengthField(QStringLiteral("\r\nContent-Length: (\\d+)"));
    QByteArray& request = mIncoming[socket];
    request += socket->readAll();
    const auto headEnd = request.indexOf("\r\n\r\n");
    const auto length = lengthField.match(QString::fromLatin1(request.left(headEnd))).captured(1).toLongLong();
    if (headEnd < 0 || request.size() < headEnd + 4 + length)
        return;
    mRequests.append(mIncoming.take(socket));
    if (mHeld)
        mWaiting.append(socket);
    else
        respond(socket);
}

void ScriptedServer::respond(QTcpSocket* socket) {
    if (!mAnswers.isEmpty())
        socket->write(mAnswers.takeFirst());
    socket->disconnectFromHost();
}
