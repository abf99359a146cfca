// The host runtime's assertion.
#pragma once

#include "platform/export.h"

namespace RTBASE_2_18 {

// What an assertion does. All texts live for the call only. `file` is a source path, possibly without ending.
using assertion_handler_t = void (*)(const char* message, const char* function, const char* file, int line);

// Installs what assertions do from now on, in the whole process; null brings the default back. Answers the
// handler that was in force. Any thread.
TESSERA_PLATFORM_EXPORT assertion_handler_t set_assertion_handler(assertion_handler_t handler) noexcept;

// Raises an assertion: calls the installed handler. The default prints message and place to standard error
// and ends the program with abort(); a handler of the host's own may return, then the caller goes on. Any
// thread.
TESSERA_PLATFORM_EXPORT void assertion_failed(const char* message, const char* function, const char* file,
                                              int line);

}  // namespace RTBASE_2_18
