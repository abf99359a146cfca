// The subcommands of the program: one table for options, help and main.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tessera_cli {

struct Options;

// Options that belong together. `options.cpp` says what each group adds to the command line.
enum class OptionGroup : std::uint8_t {
    common,          // the document, filters, catalogues, the log
    result,          // --db, which may be left out
    requiredResult,  // --db
    acyclic,
    fix,
    limits,
    inspection,  // watching the layout
    output,      // -o and --format
    picture,
    mode,
};

struct Command {
    std::string_view name;
    const char* help;  // one line
    std::span<const OptionGroup> groups;
    int (*run)(const Options& options);  // returns the exit status of the program
    bool readsDocumentFromInput = true;  // whether "-" can name its document
};

[[nodiscard]] std::span<const Command> commands();

// "render, session and check".
[[nodiscard]] std::string commandNames();

}  // namespace tessera_cli
