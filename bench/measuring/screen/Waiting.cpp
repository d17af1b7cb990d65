#include "bench/measuring/screen/Waiting.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

bool waitUntil(const std::function<bool()>& holds, int limitMs) {
    QEventLoop loop;
    QTimer look;
    QElapsedTimer clock;
    clock.start();
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (holds())
            loop.exit(0);
        else if (clock.hasExpired(limitMs))
            loop.exit(1);
    });
    look.start(20);
    return loop.exec() == 0;
}
