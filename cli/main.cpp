#include "cli/commands.h"
#include "cli/interrupt.h"
#include "cli/log.h"
#include "cli/message.h"
#include "cli/standard_descriptors.h"

int main(int argc, char** argv) {
    using namespace tessera_cli;
    fillStandardDescriptors();
    installInterruptHandler();
    int exitStatus = exitDone;
    const auto options = parseCommandLine(argc, argv, exitStatus);
    if (!options) return exitStatus;
    if (const std::string problem = configureLog(options->logConfig, options->logLevel); !problem.empty()) {
        printMessage(problem);
        return exitUnopened;
    }
    switch (options->command) {
        case Command::render:
            exitStatus = render(*options);
            break;
        case Command::session:
            exitStatus = session(*options);
            break;
        case Command::check:
            exitStatus = check(*options);
            break;
    }
    closeLog();
    if (isInterrupted()) {
        printMessage("interrupted");
        return exitInterrupted;
    }
    return exitStatus;
}
