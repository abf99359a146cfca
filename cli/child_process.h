// Work in a process of its own, for libraries that may not come back from it.
#pragma once

#include <functional>
#include <string>

#include "host/error.h"

namespace tessera_cli {

// Work that returns its result. It calls the function that it gets before it waits for others, such as the
// reader of a pipe: until then it is expected to compute.
using ChildWork = std::function<std::string(const std::function<void()>& willWait)>;

// Runs `work` in a copy of this program and returns the string that it returned there. The copy has this
// program's memory and open files; what it changes in memory is lost. It ends without destructors and
// handlers of exit.
//
// The error has the kind cancelled when the program was interrupted, which also ends the copy, by force when
// it does not end within half a second; otherwise the kind cannotOpen: the copy could not be started, threw
// an exception, or ended without a result: by a signal, because memory was short for a second, or by force
// because it did nothing for fifteen. One call at a time.
[[nodiscard]] tessera_host::Expected<std::string> runInChild(const ChildWork& work);

}  // namespace tessera_cli
