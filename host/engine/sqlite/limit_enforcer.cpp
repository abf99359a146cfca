#include "host/engine/sqlite/limit_enforcer.h"

#include <algorithm>
#include <thread>

namespace tessera_host {
namespace {

// Some tens of microseconds of work.
constexpr int stepsPerLook = 1000;
constexpr std::chrono::milliseconds maxNap{20};

}  // namespace

void LimitEnforcer::install(sqlite3* database) {
    sqlite3_progress_handler(database, stepsPerLook, &LimitEnforcer::onSteps, this);
    sqlite3_busy_handler(database, &LimitEnforcer::onBusy, this);
}

void LimitEnforcer::arm(const RunLimits& limits) {
    m_limits = limits;
    m_deadline = Clock::now() + limits.options.limits.time;
    m_steps = 0;
    m_stop = Stop::none;
    m_isArmed = true;
}

bool LimitEnforcer::isLimitReached() {
    if (m_limits.options.cancel.isCancelled())
        m_stop = Stop::cancelled;
    else if (m_steps > m_limits.stepBudget)
        m_stop = Stop::budget;
    else if (Clock::now() >= m_deadline)
        m_stop = Stop::timeout;
    return m_stop != Stop::none;
}

int LimitEnforcer::onSteps(void* self) {
    auto& enforcer = *static_cast<LimitEnforcer*>(self);
    enforcer.m_steps += stepsPerLook;
    return enforcer.m_isArmed && enforcer.isLimitReached() ? 1 : 0;
}

// Returns 0 to give up. Naps are short so that a cancelled request ends at once.
int LimitEnforcer::onBusy(void* self, int attempt) {
    auto& enforcer = *static_cast<LimitEnforcer*>(self);
    if (!enforcer.m_isArmed || enforcer.isLimitReached()) return 0;
    if (attempt == 0) enforcer.m_busySince = Clock::now();
    if (Clock::now() - enforcer.m_busySince >= enforcer.m_busyTimeout) return 0;
    std::this_thread::sleep_for(std::min(std::chrono::milliseconds(1 + attempt), maxNap));
    return 1;
}

}  // namespace tessera_host
