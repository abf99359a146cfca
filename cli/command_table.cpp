#include "cli/command_table.h"

#include <array>

#include "cli/commands.h"
#include "host/document/text.h"

namespace tessera_cli {
namespace {

using enum OptionGroup;

constexpr std::array renderGroups{common, requiredResult, acyclic, limits, inspection, output, picture, mode};
constexpr std::array sessionGroups{common, requiredResult, acyclic, limits};
constexpr std::array checkGroups{common, result, fix};

// A new subcommand is a row here and a file of its own.
constexpr std::array<Command, 3> all{{
    {"render", "Makes one diagram and writes it", renderGroups, render},
    {"session", "Runs requests from standard input and writes a response to each, one JSON object a line",
     sessionGroups, session, false},
    {"check", "Reports everything wrong with a document", checkGroups, check},
}};

}  // namespace

std::span<const Command> commands() {
    return all;
}

std::string commandNames() {
    return tessera_host::listed(all, " and ", [](const Command& command) { return command.name; });
}

}  // namespace tessera_cli
