// Cancellation: one source, any number of tokens.
#pragma once

#include <atomic>
#include <memory>
#include <utility>

namespace tessera_support {

// Tells work that it should stop. Work takes a token by value or by reference to const, looks at it between
// steps, and returns early once it is cancelled; what it leaves behind is unfinished but fit to be destroyed.
//
// Tokens are small and cheap to copy. A token stays valid after its source is gone. One that was made without
// a source is never cancelled. Any thread.
class CancelToken {
  public:
    // A token that is never cancelled, for work that nothing may stop.
    CancelToken() noexcept = default;

    // One relaxed atomic load, so a loop may call it at every step. Once true, it stays true.
    [[nodiscard]] bool isCancelled() const noexcept {
        return m_flag != nullptr && m_flag->load(std::memory_order_relaxed);
    }

  private:
    friend class CancelSource;
    explicit CancelToken(std::shared_ptr<const std::atomic<bool>> flag) noexcept : m_flag(std::move(flag)) {}

    std::shared_ptr<const std::atomic<bool>> m_flag;  // shared with the source; null without one
};

// Cancels the tokens that it hands out. The code that starts the work makes a source for it: the program one for
// its whole run, a server one for each update. It may end before the work: its tokens then stay as they are.
// Any thread.
class CancelSource {
  public:
    // Not cancelled. Allocates, so it is not made in a signal handler.
    CancelSource() : m_flag(std::make_shared<std::atomic<bool>>(false)) {}
    CancelSource(const CancelSource&) = delete;
    CancelSource& operator=(const CancelSource&) = delete;

    // Cancels all tokens, also those handed out later. Cannot be undone; a second call changes nothing. May be called
    // in a signal handler, because it is a lock-free store. It does not wait: the work ends when it next looks.
    void cancel() noexcept { m_flag->store(true, std::memory_order_relaxed); }

    // Whether cancel() was called; what every token of this source reports.
    [[nodiscard]] bool isCancelled() const noexcept { return m_flag->load(std::memory_order_relaxed); }
    // A new token of this source. The caller owns it and may keep it as long as it likes.
    [[nodiscard]] CancelToken token() const noexcept { return CancelToken(m_flag); }

  private:
    static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler cancels");

    const std::shared_ptr<std::atomic<bool>> m_flag;
};

}  // namespace tessera_support
