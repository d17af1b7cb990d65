#pragma once

#include <ctime>

// Milliseconds that this thread works on something. Unlike the time on the wall they stay the same on a busy machine.
template <typename Work>
double threadMsOf(const Work& work) {
    const auto now = [] {
        timespec time{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
    };
    const double began = now();
    work();
    return now() - began;
}
