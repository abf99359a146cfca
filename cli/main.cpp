#include <new>
#include <optional>
#include <stdexcept>

#include "cli/command_table.h"
#include "cli/commands.h"
#include "cli/interrupt.h"
#include "cli/log.h"
#include "cli/message.h"
#include "cli/options.h"
#include "cli/standard_descriptors.h"

namespace {

using namespace tessera_cli;

int reportCommandLine(const tessera_host::Error& error) {
    const int exitStatus = reportError(error);
    if (exitStatus == exitUsage) printMessage("try: tessera --help");
    return exitStatus;
}

int run(const Options& options) {
    const auto configured = configureLog(options.logConfig, options.logLevel);
    if (!configured) return reportError(configured.error());
    return options.command->run(options);
}

}  // namespace

// The order matters: files opened before the standard descriptors are filled could take their numbers.
int main(int argc, char** argv) try {
    fillStandardDescriptors();
    installInterruptHandler();
    const auto parsed = parseCommandLine(argc, argv);
    if (!parsed) return reportCommandLine(parsed.error());
    const std::optional<Options>& options = *parsed;
    // Help or the version was printed.
    if (!options) return exitDone;
    const int exitStatus = run(*options);
    closeLog();
    if (exitStatus == exitInterrupted) printMessageWithoutWaiting("interrupted");
    return exitStatus;
} catch (const std::bad_alloc&) {
    // Failures are returned as errors; only what the standard library throws for want of memory arrives.
    printMessage("there is not enough memory");
    return exitFailed;
} catch (const std::length_error&) {
    printMessage("something is longer than memory can hold");
    return exitFailed;
}
