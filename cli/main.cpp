#include <cstdlib>
#include <exception>
#include <new>
#include <optional>
#include <stdexcept>

#include "cli/command_table.h"
#include "cli/commands.h"
#include "cli/interrupt.h"
#include "cli/log.h"
#include "cli/message.h"
#include "cli/options.h"
#include "cli/program_end.h"
#include "cli/standard_descriptors.h"
#include "cli/terminal_text.h"

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

// Some destructors of libraries need memory and end the program when there is none. Everything else that gets
// here is a defect of the program, and leaves its traces.
[[noreturn]] void terminate() {
    try {
        if (const auto failure = std::current_exception()) std::rethrow_exception(failure);
    } catch (const std::bad_alloc&) {
        endWithoutMemory("tessera: there is not enough memory\n");
    } catch (...) {
        std::abort();
    }
    std::abort();
}

int start(int argc, char** argv) {
    const auto parsed = parseCommandLine(argc, argv);
    if (!parsed) return reportCommandLine(parsed.error());
    const std::optional<Options>& options = *parsed;
    // Help or the version was printed.
    if (!options) return exitDone;
    return run(*options);
}

}  // namespace

// The order matters: files opened before the standard descriptors are filled could take their numbers.
int main(int argc, char** argv) try {
    std::set_terminate(terminate);
    prepareStandardDescriptors();
    installInterruptHandler();
    const TerminalStreams streams;
    const int exitStatus = start(argc, argv);
    if (exitStatus == exitInterrupted) printMessageWithoutWaiting("interrupted");
    return endProgram(exitStatus);
} catch (const std::bad_alloc&) {
    // Failures are returned as errors; only what the standard library throws for want of memory arrives.
    endWithoutMemory("tessera: there is not enough memory\n");
} catch (const std::length_error&) {
    endWithoutMemory("tessera: something is longer than memory can hold\n");
} catch (const std::exception&) {
    // For example std::system_error, where a lock or a thread needs memory.
    endWithoutMemory("tessera: the program cannot continue; there may not be enough memory\n");
}
