#include "host/engine/sqlite/limit_enforcer.h"

#include <algorithm>
#include <thread>

namespace tessera_host {
namespace {

// Some tens of microseconds of work.
constexpr int stepsPerLook = 1000;
constexpr std::chrono::milliseconds maxNap{20};
// A look at the clock costs as much as a few allocations. Large ones are what takes long to fill.
constexpr std::int64_t bytesPerLook = std::int64_t{16} * 1024;
// What a statement that was interrupted may take until it ends: the next loop may be some values away.
constexpr std::int64_t reserve = std::int64_t{64} << 20;

// Half of a request's memory is for its values (result.h).
std::int64_t heapLimit(const QueryLimits& limits) {
    return static_cast<std::int64_t>(limits.memory / 2);
}

thread_local LimitEnforcer* currentEnforcer = nullptr;

}  // namespace

LimitEnforcer* LimitEnforcer::current() noexcept {
    return currentEnforcer;
}

void LimitEnforcer::install(sqlite3* database) {
    m_database = database;
    sqlite3_progress_handler(database, stepsPerLook, &LimitEnforcer::onSteps, this);
    sqlite3_busy_handler(database, &LimitEnforcer::onBusy, this);
}

void LimitEnforcer::arm(const RunLimits& limits) {
    m_limits = limits;
    m_deadline = Clock::now() + limits.options.limits.time;
    m_steps = 0;
    m_memory = 0;
    m_temporary = 0;
    m_sinceLook = 0;
    m_isMemoryShort = false;
    m_stop = Stop::none;
    m_isArmed = true;
}

void LimitEnforcer::disarm() noexcept {
    m_isArmed = false;
    m_stop = Stop::none;
}

// The first reason is the cause.
void LimitEnforcer::stopFor(Stop reason) {
    if (m_stop != Stop::none) return;
    m_stop = reason;
    m_stoppedAt = Clock::now();
    if (m_database != nullptr) sqlite3_interrupt(m_database);
}

bool LimitEnforcer::isDue() {
    m_sinceLook = 0;
    if (m_stop != Stop::none) return true;
    if (m_limits.options.cancel.isCancelled())
        stopFor(Stop::cancelled);
    else if (m_steps > m_limits.stepBudget)
        stopFor(Stop::budget);
    else if (Clock::now() >= m_deadline)
        stopFor(Stop::timeout);
    return m_stop != Stop::none;
}

bool LimitEnforcer::isDueAfter(std::size_t bytes) {
    m_sinceLook += static_cast<std::int64_t>(bytes);
    return m_sinceLook >= bytesPerLook ? isDue() : m_stop != Stop::none;
}

bool LimitEnforcer::mayAllocate(std::int64_t bytes) {
    constexpr std::int64_t perCall =
        64;  // what the call itself costs, in bytes that could be filled meanwhile
    m_memory += bytes;
    m_sinceLook += bytes + perCall;
    if (m_memory > heapLimit(limits()))
        stopFor(Stop::memory);
    else if (m_sinceLook >= bytesPerLook)
        (void)isDue();
    if (m_stop == Stop::none || !isRefused(bytes)) return true;
    m_memory -= bytes;
    return false;
}

bool LimitEnforcer::isRefused(std::int64_t bytes) const {
    constexpr std::chrono::milliseconds patience{250};
    return m_isCompiling || m_memory > heapLimit(limits()) + reserve ||
           (bytes >= bytesPerLook && Clock::now() - m_stoppedAt > patience);
}

bool LimitEnforcer::mayWriteTemporary(std::int64_t bytes) {
    const auto limit = static_cast<std::int64_t>(limits().memory);
    m_temporary += bytes;
    if (m_temporary > limit)
        stopFor(Stop::temporaryFiles);
    else
        (void)isDue();
    if (m_temporary <= limit + reserve) return true;
    m_temporary -= bytes;
    return false;
}

int LimitEnforcer::onSteps(void* self) {
    auto& enforcer = *static_cast<LimitEnforcer*>(self);
    enforcer.m_steps += stepsPerLook;
    return enforcer.m_isArmed && enforcer.isDue() ? 1 : 0;
}

// Returns 0 to give up. Naps are short so that a cancelled request ends at once.
int LimitEnforcer::onBusy(void* self, int attempt) {
    auto& enforcer = *static_cast<LimitEnforcer*>(self);
    if (!enforcer.m_isArmed || enforcer.isDue()) return 0;
    if (attempt == 0) enforcer.m_busySince = Clock::now();
    if (Clock::now() - enforcer.m_busySince >= enforcer.m_busyTimeout) return 0;
    std::this_thread::sleep_for(std::min(std::chrono::milliseconds(1 + attempt), maxNap));
    return 1;
}

LimitScope::LimitScope(LimitEnforcer& enforcer, const RunLimits& limits)
    : m_enforcer(enforcer), m_outer(currentEnforcer), m_isOutermost(!enforcer.m_isArmed) {
    if (m_isOutermost) enforcer.arm(limits);
    currentEnforcer = &enforcer;
}

LimitScope::~LimitScope() {
    currentEnforcer = m_outer;
    if (m_isOutermost) m_enforcer.disarm();
}

}  // namespace tessera_host
