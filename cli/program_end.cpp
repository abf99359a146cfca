#include "cli/program_end.h"

#include <cstdio>
#include <cstdlib>

#include "cli/log.h"

namespace tessera_cli {

int endProgram(int status) {
#ifndef TESSERA_NORMAL_EXIT
    closeLog();
    std::fflush(nullptr);
    std::_Exit(status);
#endif
    return status;
}

}  // namespace tessera_cli
