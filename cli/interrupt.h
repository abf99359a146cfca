// Ctrl-C.
#pragma once

#include "host/engine/token_progress.h"
#include "support/cancel_token.h"

namespace tessera_cli {

// From now on SIGINT, SIGTERM and SIGHUP cancel the running work; a second one ends the program at once.
// SIGPIPE is ignored, so that closed output is an error of its write.
void installInterruptHandler();

// Cancelled by the first of these signals. All work of the program gets it.
[[nodiscard]] tessera_support::CancelToken interruptToken() noexcept;
[[nodiscard]] bool isInterrupted() noexcept;

// The exit status of work that could not be finished: `status`, or that of an interruption if there was one.
[[nodiscard]] int orInterrupted(int status) noexcept;

// A file descriptor that becomes readable with the interruption, to be polled together with what is waited
// for: the signal may come on any thread, so it need not end a wait by itself.
[[nodiscard]] int interruptDescriptor() noexcept;

// The progress sink of every request: cancelled once the program is interrupted.
class InterruptProgress final : public tessera_host::TokenProgress {
  public:
    InterruptProgress() : TokenProgress(interruptToken()) {}
};

}  // namespace tessera_cli
