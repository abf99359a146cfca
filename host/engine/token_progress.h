// A CancelToken as the progress sink that the platform's interfaces take.
#pragma once

#include "platform/relay2/progress.h"
#include "support/cancel_token.h"

namespace tessera_host {

// Made for one request and borrowed by all that works on it, so it must outlive the request. Any thread may
// read it.
class TokenProgress : public relay2::IProgress {
  public:
    explicit TokenProgress(tessera_support::CancelToken token) : m_token(std::move(token)) {}

    // Called by the library between steps, and by engines.
    [[nodiscard]] bool isCancelled() const override { return m_token.isCancelled(); }
    // The token itself, for work that looks at it by itself, such as a running SQL statement.
    [[nodiscard]] const tessera_support::CancelToken& token() const noexcept { return m_token; }

  private:
    const tessera_support::CancelToken m_token;
};

// The token of a TokenProgress. For null, and for the sink of another host, a token that is never cancelled:
// then only the places where the caller looks at the sink can end the work.
[[nodiscard]] inline tessera_support::CancelToken tokenOf(const relay2::IProgress* progress) {
    const auto* own = dynamic_cast<const TokenProgress*>(progress);
    return own ? own->token() : tessera_support::CancelToken();
}

}  // namespace tessera_host
