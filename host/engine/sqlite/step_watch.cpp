#include "host/engine/sqlite/step_watch.h"

#include <algorithm>
#include <thread>

namespace tessera_host {
namespace {

// Some tens of microseconds of work.
constexpr int stepsPerLook = 1000;
constexpr std::chrono::milliseconds maxNap{20};

}  // namespace

void StepWatch::install(sqlite3* database) {
    sqlite3_progress_handler(database, stepsPerLook, &StepWatch::onSteps, this);
    sqlite3_busy_handler(database, &StepWatch::onBusy, this);
}

void StepWatch::arm(const RunLimits& limits) {
    m_limits = limits;
    m_deadline = Clock::now() + limits.options.limits.time;
    m_steps = 0;
    m_stop = Stop::none;
    m_isArmed = true;
}

bool StepWatch::mustStop() {
    if (m_limits.options.cancel.isCancelled())
        m_stop = Stop::cancelled;
    else if (m_steps > m_limits.stepBudget)
        m_stop = Stop::budget;
    else if (Clock::now() >= m_deadline)
        m_stop = Stop::timeout;
    return m_stop != Stop::none;
}

int StepWatch::onSteps(void* self) {
    auto& watch = *static_cast<StepWatch*>(self);
    watch.m_steps += stepsPerLook;
    return watch.m_isArmed && watch.mustStop() ? 1 : 0;
}

// Returns 0 to give up. Naps are short so that a cancelled request ends at once.
int StepWatch::onBusy(void* self, int attempt) {
    auto& watch = *static_cast<StepWatch*>(self);
    if (!watch.m_isArmed || watch.mustStop()) return 0;
    if (attempt == 0) watch.m_busySince = Clock::now();
    if (Clock::now() - watch.m_busySince >= watch.m_busyTimeout) return 0;
    std::this_thread::sleep_for(std::min(std::chrono::milliseconds(1 + attempt), maxNap));
    return 1;
}

}  // namespace tessera_host
