#pragma once

#include <QObject>

#include <thread>

// Takes a step that may last off the thread of its owner: it runs on a thread of its own, and what it returns comes
// back through the owner's event loop.
//
// A member of its owner. When the owner goes it waits for the step, and nobody hears what that returned.
class SideThread {
public:
    // What steps return comes back on the owner's thread.
    explicit SideThread(QObject* owner) : mOwner(owner) {}
    ~SideThread() { wait(); }
    SideThread(const SideThread&) = delete;
    SideThread& operator=(const SideThread&) = delete;

    // The step has what it needs by value and does not touch the owner. One at a time: a step that still runs is waited
    // for.
    template <typename Step, typename Then>
    void run(Step step, Then then) {
        wait();
        mThread = std::thread([owner = mOwner, step, then] {
            QMetaObject::invokeMethod(
                owner, [result = step(), then] { then(result); }, Qt::QueuedConnection);
        });
    }

private:
    void wait() {
        if (mThread.joinable())
            mThread.join();
    }

    QObject* mOwner;
    std::thread mThread;
};
