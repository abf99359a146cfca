// A signal that interrupts system calls.
#pragma once

#include <pthread.h>

#include <chrono>
#include <csignal>
#include <thread>

namespace tessera_host::text_support {

// While it lives, SIGUSR1 is caught and system calls that it meets end with EINTR.
class InterruptingSignal {
  public:
    InterruptingSignal() {
        struct sigaction action {};
        action.sa_handler = [](int) {};  // and no SA_RESTART
        sigaction(SIGUSR1, &action, &m_before);
    }
    InterruptingSignal(const InterruptingSignal&) = delete;
    InterruptingSignal& operator=(const InterruptingSignal&) = delete;
    ~InterruptingSignal() { sigaction(SIGUSR1, &m_before, nullptr); }

    // Several times, so that the thread will have come to its system call by the last.
    void sendTo(std::thread& thread) const {
        for (int i = 0; i < 10; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            pthread_kill(thread.native_handle(), SIGUSR1);
        }
    }

  private:
    struct sigaction m_before {};
};

}  // namespace tessera_host::text_support
