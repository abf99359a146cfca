// Whether a check is to be broken off.
#pragma once

#include "platform/relay2/progress.h"

namespace tessera_host {

// Stands between the walks of a check, which ask at every step, and the progress sink, which need not hear of
// all of that. A walk that is told to stop leaves its result unfinished but fit to be destroyed.
class Watch {
  public:
    static constexpr int stepsBetweenQuestions = 4096;

    explicit Watch(const relay2::IProgress* progress) : m_progress(progress) {}
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    // Once true, it stays true.
    [[nodiscard]] bool mustStop() { return --m_steps > 0 ? m_mustStop : mustStopNow(); }

    // The same without waiting for the next question.
    [[nodiscard]] bool mustStopNow() {
        m_steps = stepsBetweenQuestions;
        m_mustStop = m_mustStop || (m_progress && m_progress->isCancelled());
        return m_mustStop;
    }

  private:
    const relay2::IProgress* m_progress;  // null: nobody watches
    int m_steps = 0;
    bool m_mustStop = false;
};

}  // namespace tessera_host
