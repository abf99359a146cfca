// The messages of one request, collected.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/document/problem.h"
#include "platform/relay2/messenger.h"

namespace tessera_host {

// Given with a request (RequestOptions::messages). Used by the thread of the request, and by others when the
// request has ended.
class MessageList final : public relay2::IMessenger {
  public:
    void post(relay2::severity_t severity, const std::string& text,
              basekit2::source_position_t position) override {
        m_messages.push_back({position, text, severity});
    }

    // In the order in which they were posted.
    [[nodiscard]] const std::vector<Problem>& messages() const noexcept { return m_messages; }
    // The same, and leaves the list empty for a further request.
    [[nodiscard]] std::vector<Problem> take() noexcept { return std::exchange(m_messages, {}); }

  private:
    std::vector<Problem> m_messages;
};

}  // namespace tessera_host
