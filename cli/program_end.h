// The end of a program that is done.
#pragma once

#include <string_view>

namespace tessera_cli {

// Ends the program with this status when everything is written, and leaves its memory to the system: taking
// a large diagram apart first is slow and helps no one. Closes the log. Returns the status, instead of ending
// anything, in builds that look for leaks at a normal exit.
[[nodiscard]] int endProgram(int status);

// Ends the program with exitFailed after `message`, a whole line. Nothing here or later takes memory, so this
// is for a program that has none left.
[[noreturn]] void endWithoutMemory(std::string_view message) noexcept;

}  // namespace tessera_cli
