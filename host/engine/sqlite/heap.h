// The memory that SQLite takes, so that a limit holds for it.
#pragma once

namespace tessera_host {

// SQLite takes its memory through functions of this file, which ask the LimitEnforcer of the running thread
// first. They are installed before main() runs, because SQLite accepts that only before its first use.
// False when SQLite had been used before, by another part of a process that loads this one later: statements
// are then bounded while they run, but neither is their memory, nor their compiling. Any thread.
[[nodiscard]] bool isHeapBounded() noexcept;

}  // namespace tessera_host
