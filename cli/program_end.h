// The end of a program that is done.
#pragma once

namespace tessera_cli {

// Ends the program with this status when everything is written, and leaves its memory to the system: taking
// a large diagram apart first is slow and helps no one. Closes the log. Returns the status, instead of ending
// anything, in builds that look for leaks at a normal exit.
[[nodiscard]] int endProgram(int status);

}  // namespace tessera_cli
