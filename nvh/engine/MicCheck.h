#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

class ChildProcess;

// The microphone check program on a finished recording; each check is a process of its own. Main thread; nothing
// blocks.
class MicCheck : public QObject {
    Q_OBJECT
public:
    // The process becomes a child of the parent, which outlives this object.
    explicit MicCheck(QObject* parent);

    // The program, and its arguments as the settings say now.
    static QString program();
    static QStringList arguments();

    // Starts a check where there is none; ended() or failed() follows. One that takes longer than 30 s is killed.
    void start();
    // From start() to release().
    bool isActive() const { return mProcess != nullptr; }
    // What it has said so far; empty without one.
    QString words() const;
    // Forgets a check that has ended, or kills it: nobody hears of it any more.
    void release();

signals:
    // The program has ended.
    void ended();
    // It could not be started or crashed.
    void failed();

private:
    ChildProcess* mProcess = nullptr;
};
