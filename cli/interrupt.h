// Ctrl-C.
#pragma once

#include "support/cancel_token.h"

namespace tessera_cli {

// From now on SIGINT, SIGTERM and SIGHUP cancel the running work; a second signal, also another one of them,
// ends the program at once, wherever it is. SIGPIPE and SIGXFSZ are ignored, so that closed output and a
// limit on the size of files are errors of a write. Called once, by main, before any thread is started.
void installInterruptHandler();

// Cancelled by the first of these signals. All work of the program gets it.
[[nodiscard]] tessera_support::CancelToken interruptToken() noexcept;
[[nodiscard]] bool isInterrupted() noexcept;

// The exit status of work that could not be finished: `status`, or that of an interruption if there was one.
[[nodiscard]] int orInterrupted(int status) noexcept;

// A file descriptor that becomes readable when the program is interrupted; -1 when it could not be made.
// Whoever waits for input polls it as well: the signal may come on another thread and does not end the wait
// by itself. Stays open until the program ends; not to be read.
[[nodiscard]] int interruptDescriptor() noexcept;

// Called by a process that was forked from this one, first of all: its signals are its own from now on, while
// it still wakes with its parent.
void becomeChild() noexcept;

}  // namespace tessera_cli
