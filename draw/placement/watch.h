// Long work asks here whether it is still wanted.
#pragma once

#include <functional>

namespace tessera_draw::placing {

class Watch {
  public:
    // `ask` may be empty, and must outlive the watch.
    explicit Watch(const std::function<bool()>& ask) : m_ask(ask) {}

    // Once true, always true.
    [[nodiscard]] bool isStopped() {
        if (!m_isStopped && m_ask) m_isStopped = m_ask();
        return m_isStopped;
    }

  private:
    const std::function<bool()>& m_ask;
    bool m_isStopped = false;
};

}  // namespace tessera_draw::placing
