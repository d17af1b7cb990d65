#pragma once

#include <QtGlobal>

#include <memory>

class ChildProcess;
class QObject;

// Ends a program that outlives this process although it was told to end: some are deaf to SIGTERM, and nobody would be
// left to kill them. A shell waits at the other end of a pipe; if this process dies, however it dies, the pipe closes,
// and 3 s later the program is killed if it is still there. Main thread.
class OrphanGuard {
public:
    // The shell becomes a child of the parent.
    explicit OrphanGuard(QObject* parent);
    // Guards nothing any more.
    ~OrphanGuard();

    // Guards a running program until release().
    void watch(qint64 processId);
    void release();

private:
    QObject* mParent;
    std::unique_ptr<ChildProcess> mShell;
};
