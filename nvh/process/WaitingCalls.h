#pragma once

#include <QObject>
#include <QPointer>

#include <functional>
#include <utility>
#include <vector>

// Calls that wait until something has ended. One thread.
class WaitingCalls {
public:
    // Not made for a context that is destroyed before.
    void add(QObject* context, std::function<void()> call) {
        mCalls.push_back([context = QPointer<QObject>(context), call = std::move(call)] {
            if (context)
                call();
        });
    }

    // In the order in which they were added; one that is added meanwhile waits for the next time.
    void makeAll() {
        for (const auto& call : std::exchange(mCalls, {}))
            call();
    }

private:
    std::vector<std::function<void()>> mCalls;
};
