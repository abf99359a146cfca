// Stops a statement, its compiling included, that was cancelled or has reached a limit.
#pragma once

#include <sqlite3.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "host/engine/result.h"

namespace tessera_host {

// How much the work within one LimitScope may use.
struct RunLimits {
    static constexpr std::uint64_t noBudget = std::numeric_limits<std::uint64_t>::max();

    RunOptions options;
    std::uint64_t stepBudget = noBudget;  // virtual-machine steps
};

// One for each connection. Called while its statements are compiled and run, whenever SQLite takes memory
// (heap.h), writes to a temporary file (temporary_files.h), has run some steps, calls one of the functions that
// may take long, or waits for a lock of another program. Within a LimitScope it enforces limits; otherwise
// nothing is ever stopped and a lock is not waited for. One thread at a time.
//
// A running statement is interrupted, which ends it at its next loop and keeps the transaction. One that does not
// reach its next loop soon gets no more memory for large values, which ends the transaction as well. A statement
// that is being compiled gets no more memory at once, because SQLite looks at nothing else then.
class LimitEnforcer {
  public:
    using Clock = std::chrono::steady_clock;
    enum class Stop { none, cancelled, timeout, budget, memory, temporaryFiles };

    explicit LimitEnforcer(std::chrono::milliseconds busyTimeout) : m_busyTimeout(busyTimeout) {}
    LimitEnforcer(const LimitEnforcer&) = delete;
    LimitEnforcer& operator=(const LimitEnforcer&) = delete;

    // Makes `database` call this object, which must live as long as it.
    void install(sqlite3* database);
    // The enforcer of the innermost scope on this thread; null outside of all.
    [[nodiscard]] static LimitEnforcer* current() noexcept;

    // Which limit was reached in this scope; none outside of one.
    [[nodiscard]] Stop stop() const noexcept { return m_stop; }
    // The limits that were given last.
    [[nodiscard]] const QueryLimits& limits() const noexcept { return m_limits.options.limits; }

    // While `isCompiling`, memory is refused once a limit is reached.
    void setCompiling(bool isCompiling) noexcept { m_isCompiling = isCompiling; }
    // Looks at the clock and the token; true once the statement has to end.
    [[nodiscard]] bool isDue();
    // The same from time to time. For functions that may take long, with the bytes that they went through since
    // they last called this; when it is true they return an error.
    [[nodiscard]] bool isDueAfter(std::size_t bytes);
    // Whether so many bytes more may be taken from the heap, or written to temporary files. Both count them when
    // they may.
    [[nodiscard]] bool mayAllocate(std::int64_t bytes);
    [[nodiscard]] bool mayWriteTemporary(std::int64_t bytes);
    // The system had no more memory, though the limits allowed it.
    void setMemoryShort() noexcept { m_isMemoryShort = true; }
    [[nodiscard]] bool isMemoryShort() const noexcept { return m_isMemoryShort; }
    void released(std::int64_t bytes) noexcept { m_memory -= bytes; }
    void releasedTemporary(std::int64_t bytes) noexcept { m_temporary -= bytes; }

  private:
    friend class LimitScope;

    void arm(const RunLimits& limits);
    void disarm() noexcept;
    static int onSteps(void* self);
    static int onBusy(void* self, int attempt);
    void stopFor(Stop reason);
    [[nodiscard]] bool isRefused(std::int64_t bytes) const;

    const std::chrono::milliseconds m_busyTimeout;
    sqlite3* m_database = nullptr;
    RunLimits m_limits;
    Clock::time_point m_deadline;
    Clock::time_point m_busySince;
    Clock::time_point m_stoppedAt;
    std::uint64_t m_steps = 0;
    // Bytes that were taken in this scope less those that were given back, which may be from before.
    std::int64_t m_memory = 0;
    std::int64_t m_temporary = 0;
    std::int64_t m_sinceLook = 0;
    Stop m_stop = Stop::none;
    bool m_isArmed = false;
    bool m_isCompiling = false;
    bool m_isMemoryShort = false;
};

// Limits hold from its making to its end, for all statements of the connection together. One within another
// one of the same connection changes nothing: the outer limits hold on.
class LimitScope {
  public:
    LimitScope(LimitEnforcer& enforcer, const RunLimits& limits);
    ~LimitScope();
    LimitScope(const LimitScope&) = delete;
    LimitScope& operator=(const LimitScope&) = delete;

  private:
    LimitEnforcer& m_enforcer;
    LimitEnforcer* const m_outer;  // of this thread
    const bool m_isOutermost;      // of this enforcer
};

}  // namespace tessera_host
