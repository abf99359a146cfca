#include "cli/standard_descriptors.h"

#include <fcntl.h>
#include <unistd.h>

#include <initializer_list>

namespace tessera_cli {

void fillStandardDescriptors() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) != -1) continue;
        // The lowest free number is this one. What may only be read cannot be written to.
        (void)open("/dev/null", descriptor == STDERR_FILENO ? O_WRONLY : O_RDONLY);
    }
}

}  // namespace tessera_cli
