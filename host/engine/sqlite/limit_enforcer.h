// Stops a running statement that was cancelled or has reached a limit.
#pragma once

#include <sqlite3.h>

#include <chrono>
#include <cstdint>
#include <limits>

#include "host/engine/result.h"

namespace tessera_host {

// How much one statement may use.
struct RunLimits {
    static constexpr std::uint64_t noBudget = std::numeric_limits<std::uint64_t>::max();

    RunOptions options;
    std::uint64_t stepBudget = noBudget;  // virtual-machine steps
};

// Called by SQLite while statements of one connection run and while it waits for a lock of another program.
// Between arm() and disarm() it enforces limits; otherwise nothing is ever stopped and a lock is not waited
// for.
class LimitEnforcer {
  public:
    using Clock = std::chrono::steady_clock;
    enum class Stop { none, cancelled, timeout, budget };

    explicit LimitEnforcer(std::chrono::milliseconds busyTimeout) : m_busyTimeout(busyTimeout) {}
    LimitEnforcer(const LimitEnforcer&) = delete;
    LimitEnforcer& operator=(const LimitEnforcer&) = delete;

    // Makes `database` call this object, which must live as long as it.
    void install(sqlite3* database);

    // Starts the clock of the time limit.
    void arm(const RunLimits& limits);
    void disarm() noexcept {
        m_isArmed = false;
        m_stop = Stop::none;
    }
    // Which limit has stopped the statement, or the wait for a lock.
    [[nodiscard]] Stop stop() const noexcept { return m_stop; }
    // The time limit that was given last.
    [[nodiscard]] std::chrono::milliseconds timeLimit() const noexcept {
        return m_limits.options.limits.time;
    }

  private:
    static int onSteps(void* self);
    static int onBusy(void* self, int attempt);
    [[nodiscard]] bool isLimitReached();

    const std::chrono::milliseconds m_busyTimeout;
    RunLimits m_limits;
    Clock::time_point m_deadline;
    Clock::time_point m_busySince;
    std::uint64_t m_steps = 0;
    Stop m_stop = Stop::none;
    bool m_isArmed = false;
};

}  // namespace tessera_host
