// How long the calling thread has computed: other programs on the machine do not count.
#pragma once

#include <chrono>
#include <ctime>

namespace tessera_test {

inline std::chrono::nanoseconds threadCpuTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

}  // namespace tessera_test
