#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <thread>

// An HTTP server on 127.0.0.1 that answers each path with the bytes it was given for it, head and body, and hangs up.
// It lives in a thread of its own, so that its work is none of the UI thread's.
class AnswerServer {
public:
    explicit AnswerServer(QMap<QByteArray, QByteArray> answers);
    ~AnswerServer();
    Q_DISABLE_COPY(AnswerServer)

    // Empty if no port could be had.
    QString url(const QByteArray& path) const;

    static QByteArray answer(const char* status, const QByteArray& body);

private:
    void serve() const;
    void respond(int connection) const;

    const QMap<QByteArray, QByteArray> mAnswers;  // by path
    int mSocket = -1;
    int mPort = 0;
    std::thread mThread;
};
