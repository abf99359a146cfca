// The host runtime's assertion: reports a broken expectation of the code itself, not of its input.
//
// The diagram library raises it for failed checks when the environment variable tessera_ERROR_HANDLING
// contains "assert"; a variant raises it, whatever the environment says, when it is read as a wrong type.
#pragma once

#include "platform/export.h"

namespace RTBASE_2_18 {

// What an assertion does. Called on the thread that raised it, by any number of threads at the same time.
// - All strings are NUL-terminated UTF-8, never null, and live for the call only.
// - `function` is a name or a full signature; `file` is a source path, possibly without ending.
// - The caller may hold the request handler's lock, so the handler must not wait for a request of that pane.
// - It may return: the caller then continues as if no assertion had been raised. It must not throw.
using assertion_handler_t = void (*)(const char* message, const char* function, const char* file, int line);

// Installs what assertions do from now on, in the whole process; null brings the default back. Returns the
// handler that was installed before, never null, so that a caller can put it back. Any thread; an assertion
// that another thread is raising at this moment may still use the earlier handler.
TESSERA_PLATFORM_EXPORT assertion_handler_t set_assertion_handler(assertion_handler_t handler) noexcept;

// Raises an assertion: calls the installed handler on this thread, under no lock. The default handler prints
// message and place to standard error and ends the program with abort(). Returns when the handler returns.
// No argument may be null. Any thread.
TESSERA_PLATFORM_EXPORT void assertion_failed(const char* message, const char* function, const char* file,
                                              int line);

}  // namespace RTBASE_2_18
