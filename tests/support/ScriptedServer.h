#pragma once

#include <QByteArrayList>
#include <QHash>
#include <QList>
#include <QTcpServer>

// An HTTP server on 127.0.0.1 that answers each request with the next bytes it was given, exactly those, and hangs up:
// an answer that is shorter than it says is cut off, an empty one is none at all. Waits with every answer while it is
// held. UI thread.
class ScriptedServer : public QTcpServer {
public:
    ScriptedServer();

    QString url(const QString& path) const;
    void answer(const QByteArrayList& answers) { mAnswers += answers; }
    void hold() { mHeld = true; }
    void release();
    // From now on nobody listens; the address stays what it was.
    void refuse() { close(); }

    // Those that have come in whole: head and body.
    const QList<QByteArray>& requests() const { return mRequests; }

private:
    void receive(QTcpSocket* socket);
    void respond(QTcpSocket* socket);

    quint16 mPort = 0;
    bool mHeld = false;
    QByteArrayList mAnswers;
    QHash<QTcpSocket*, QByteArray> mIncoming;
    QList<QTcpSocket*> mWaiting;
    QList<QByteArray> mRequests;
};
