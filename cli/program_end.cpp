#include "cli/program_end.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "cli/log.h"
#include "cli/options.h"

namespace tessera_cli {

int endProgram(int status) {
#ifndef TESSERA_NORMAL_EXIT
    closeLog();
    std::fflush(nullptr);
    std::_Exit(status);
#endif
    return status;
}

void endWithoutMemory(std::string_view message) noexcept {
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, message.data(), message.size());
    std::_Exit(exitFailed);
}

}  // namespace tessera_cli
