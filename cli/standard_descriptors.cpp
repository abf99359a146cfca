#include "cli/standard_descriptors.h"

#include <fcntl.h>
#include <unistd.h>

#include <initializer_list>

namespace tessera_cli {
namespace {

int output = STDOUT_FILENO;

void fillClosed() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) != -1) continue;
        // The lowest free number is this one. What may only be read cannot be written to.
        (void)open("/dev/null", descriptor == STDERR_FILENO ? O_WRONLY : O_RDONLY);
    }
}

}  // namespace

void prepareStandardDescriptors() {
    fillClosed();
    // High numbers first: a low one could be what a user means by a name such as /dev/fd/3.
    for (const int from : {900, 200, STDERR_FILENO + 1}) {
        const int copy = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, from);
        if (copy < 0) continue;
        output = copy;
        (void)dup2(STDERR_FILENO, STDOUT_FILENO);
        return;
    }
}

int dataOutput() noexcept {
    return output;
}

}  // namespace tessera_cli
