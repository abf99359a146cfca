#include "cli/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <sstream>
#include <vector>

#include "cli/command_table.h"
#include "cli/drawing.h"
#include "cli/message.h"
#include "cli/option_values.h"
#include "cli/output_format.h"
#include "cli/picture_options.h"
#include "core/layout_watch.h"
#include "host/document/display_mode.h"
#include "host/document/filters.h"
#include "host/document/text.h"

namespace tessera_cli {
namespace {

using tessera_host::Error;
using tessera_host::ErrorKind;
using tessera_host::Expected;

constexpr const char* version = TESSERA_VERSION;

// What the command line says, as it is read.
struct RawOptions {
    Options options;
    std::vector<std::string> filters;
    std::string mode;
    std::string format;
    std::string maxMemory;
    std::string fit;
    CLI::Option* scale = nullptr;
};

// Names of a table, as CLI11 takes them.
template <class Names>
std::vector<std::string> listOf(const Names& names) {
    return {names.begin(), names.end()};
}
template <class Table>
std::vector<std::string> namesOf(const Table& table) {
    std::vector<std::string> names;
    names.reserve(table.size());
    for (const auto& entry : table)
        names.emplace_back(entry.name);
    return names;
}

void addCommon(CLI::App& command, RawOptions& raw) {
    Options& options = raw.options;
    command.add_option("VIEWPOINT", options.document, "The viewpoint document (XML); - is standard input")
        ->required()
        ->check(isNotEmpty);
    command
        .add_option("--filter", raw.filters,
                    "Replaces a filter of the document (" +
                        tessera_host::listed(tessera_host::filterNames, " or ") +
                        "); without SQL, removes it")
        ->type_name("NAME=SQL")
        // May be given several times, each with one value: the next word can be VIEWPOINT.
        ->take_all()
        ->allow_extra_args(false);
    CLI::Option* locale =
        command.add_option("--locale", options.locale, "Language of the message catalogues, for example de")
            ->type_name("NAME")
            ->check(isLanguage);
    CLI::Option* catalogs =
        command.add_option("--catalogs", options.catalogs, "Folder of the message catalogues")
            ->type_name("DIR");
    // The folder has catalogues of several languages, so one option without the other says too little.
    locale->needs(catalogs);
    catalogs->needs(locale);
    command
        .add_option("--log-config", options.logConfig, "A log4cplus properties file that configures the log")
        ->type_name("FILE");
    command
        .add_option("--log-level", options.logLevel,
                    "How much is logged: off, fatal, error, warn, info (the default), debug or trace")
        ->type_name("LEVEL")
        ->check(CLI::IsMember({"off", "fatal", "error", "warn", "info", "debug", "trace"}, CLI::ignore_case));
    command
        .add_option("--query-timeout", options.queryTimeout, "Stops a query that runs longer (default 600)")
        ->type_name("SECONDS")
        ->check([](const std::string& text) {
            double seconds = 0;
            // The comparisons below are false for "nan", which is a number to the conversion.
            const bool isNumber = CLI::detail::lexical_cast(text, seconds);
            return isNumber && seconds >= 0.001 && seconds <= 1e9 ? "" : text + " is not from 0.001 to 1e9";
        });
    command
        .add_option(
            "--max-memory", raw.maxMemory,
            "The most memory for the values and queries of a request, such as 512M or 4G (default 1G)")
        ->type_name("SIZE")
        ->check([](const std::string& text) {
            return sizeOf(text) ? "" : "\"" + text + "\" is not a size from 1M to 1024T, such as 512M or 4G";
        });
}

void addLimits(CLI::App& command, RawOptions& raw) {
    // At most 15 digits: every such number fits into 64 bits, so no overflow has to be looked for.
    const auto isCount = [](const std::string& text) {
        const bool isNumber =
            !text.empty() && text.size() <= 15 &&
            std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c); });
        return isNumber && text.find_first_not_of('0') != std::string::npos
                   ? ""
                   : "\"" + text + "\" is not an integer from 1 to 999999999999999";
    };
    command
        .add_option("--max-elements", raw.options.limits.maxElements,
                    "The most nodes and links that a diagram may have, with those that the layout adds "
                    "(default 600000, and 8 for each of a larger document)")
        ->type_name("N")
        ->check(isCount);
    command
        .add_option("--max-id-bytes", raw.options.limits.maxIdBytes,
                    "The most bytes in the ids of all nodes and links "
                    "(default 134217728, and 1024 for each of a larger document)")
        ->type_name("N")
        ->check(isCount);
}

void addAcyclic(CLI::App& command, RawOptions& raw) {
    command.add_flag(
        "--acyclic", raw.options.acyclic,
        "Reverses as few links as possible, so that none form a cycle inside a group; the picture shows "
        "the same directions");
}

void addFix(CLI::App& command, RawOptions& raw) {
    CLI::Option* fix = command.add_flag(
        "--fix", raw.options.fix,
        "Reverses as few links as possible, so that none form a cycle inside a group; writes that "
        "document, which is otherwise unchanged, and checks it");
    command
        .add_option("-o,--output", raw.options.output,
                    "The file to write the document to; may be VIEWPOINT itself (default: standard output)")
        ->type_name("FILE")
        ->check(isNotEmpty)
        ->needs(fix);
}

// Watching the layout.
void addInspection(CLI::App& command, RawOptions& raw) {
    Options& options = raw.options;
    command.add_option("--stop-after", options.stopAfter, "Stops the layout after this stage")
        ->type_name("STAGE")
        ->check(CLI::IsMember(tessera_1::layoutStages()));
    command
        .add_option("--dump-passes", options.dumpFolder,
                    "Writes the graph as text into one file for each stage")
        ->type_name("DIR")
        ->check(isNotEmpty);
    command.add_flag("--time-passes", options.timePasses, "Prints how long each stage took");
    command.add_flag("--verify", options.verify, "Checks the graph after each stage");
}

// Returns the option, so that commands that cannot do without a result can require it.
CLI::Option& addResult(CLI::App& command, RawOptions& raw) {
    return *command
                .add_option("--db", raw.options.database,
                            "The result database, an SQLite file; it is only read")
                ->type_name("RESULT")
                ->check(isNotEmpty);
}

// Whether the format fits the file's ending is checked later, when both are known.
void addOutput(CLI::App& command, RawOptions& raw) {
    std::vector<std::string> names;
    for (const OutputFormat& format : outputFormats())
        names.emplace_back(format.name);
    command.add_option("-o,--output", raw.options.output, "The file to write (default: standard output)")
        ->type_name("FILE")
        ->check(isNotEmpty);
    command
        .add_option("--format", raw.format,
                    formatNames() + " (default: by the file's ending, " +
                        std::string(outputFormats().front().name) + " for standard output)")
        ->check(CLI::IsMember(names));
}

// Read as a string; finishOptions() puts it into the optional of Options, which is empty by default.
void addMode(CLI::App& command, RawOptions& raw) {
    const auto& names = tessera_host::displayModeNames;
    command
        .add_option("--mode", raw.mode,
                    "The display mode: " + tessera_host::listed(names, " or ") +
                        " (default: " + std::string(names[0]) + ")")
        ->check(CLI::IsMember(listOf(names)));
    command
        .add_option(
            "--against", raw.options.against,
            "Another result, as --db: a picture shows each value beside the value there, and the difference; "
            "--format changes writes a table of the changes, the largest first")
        ->type_name("RESULT")
        ->check(isNotEmpty);
    command
        .add_option("--fail-on", raw.options.failOn,
                    "Ends with exit status 1 if a value that is shown is at this level of the document, or "
                    "at a worse "
                    "one; the diagram is written all the same")
        ->type_name("LEVEL")
        ->check(isLevel);
}

void addPicture(CLI::App& command, RawOptions& raw) {
    Options& options = raw.options;
    command
        .add_option("--theme", options.theme,
                    "The colors of a picture: light, dark, or auto (the default: as the reader's screen)")
        ->check(CLI::IsMember(namesOf(themeNames)));
    command
        .add_option(
            "--direction", options.direction,
            "The direction of a picture: lr (left to right), tb (top to bottom) or auto (the default: lr, "
            "or tb where that fits --fit better)")
        ->check(CLI::IsMember(namesOf(directionNames)));
    command
        .add_option("--fold", options.fold,
                    "Whether the layers of a wide picture go on in further rows: auto (the default: of one "
                    "wider than "
                    "4:1 or higher than 1:3) or off")
        ->check(CLI::IsMember({"auto", "off"}));
    command.add_option("--fit", raw.fit, "The shape of the space that a picture is for (default 16x10)")
        ->type_name("WIDTHxHEIGHT")
        ->check([](const std::string& text) {
            return shapeOf(text) ? "" : "\"" + text + "\" is not two numbers such as 16x10 or 1920x1080";
        });
    command
        .add_option("--layers", options.layers,
                    "Where the layers of a picture come from: links (the default: where the diagram's levels "
                    "contradict links, they follow the links) or document (the levels as they are)")
        ->check(CLI::IsMember(namesOf(layersNames)));
    command
        .add_option("--save-layout", options.saveLayout,
                    "Writes the layout of a picture as JSON, for a later --keep")
        ->type_name("FILE")
        ->check(isNotEmpty);
    command
        .add_option("--keep", options.keep,
                    "Keeps a saved layout: what was there keeps its order and moves as little as possible")
        ->type_name("FILE")
        ->check(isNotEmpty);
    command
        .add_option(
            "--paper", options.paper,
            "The paper of a PDF: a4, a3 or letter; a large picture continues on further pages (default: one "
            "page as large as the picture)")
        ->check(CLI::IsMember(namesOf(paperNames)));
    raw.scale =
        command
            .add_option("--scale", options.scale, "The size of a picture in pixels, as a factor (default 1)")
            ->type_name("N")
            ->check([](const std::string& text) {
                double scale = 0;
                const bool isNumber = CLI::detail::lexical_cast(text, scale);
                return isNumber && scale >= 0.05 && scale <= 20 ? "" : text + " is not from 0.05 to 20";
            });
}

// What an option group adds to a subcommand.
void addGroup(OptionGroup group, CLI::App& command, RawOptions& raw) {
    switch (group) {
        case OptionGroup::common:
            return addCommon(command, raw);
        case OptionGroup::result:
            return (void)addResult(command, raw);
        case OptionGroup::requiredResult:
            return (void)addResult(command, raw).required();
        case OptionGroup::acyclic:
            return addAcyclic(command, raw);
        case OptionGroup::fix:
            return addFix(command, raw);
        case OptionGroup::limits:
            return addLimits(command, raw);
        case OptionGroup::inspection:
            return addInspection(command, raw);
        case OptionGroup::output:
            return addOutput(command, raw);
        case OptionGroup::picture:
            return addPicture(command, raw);
        case OptionGroup::mode:
            return addMode(command, raw);
    }
}

// Usage errors have an exit status of their own.
Error usageError(std::string text) {
    return {ErrorKind::usage, std::move(text)};
}

bool hasGroup(const Command& command, OptionGroup group) {
    return std::find(command.groups.begin(), command.groups.end(), group) != command.groups.end();
}

// Splits each NAME=SQL.
Expected<std::map<std::string, std::string>> readFilters(const std::vector<std::string>& texts) {
    std::map<std::string, std::string> filters;
    for (const std::string& text : texts) {
        // The first "=" separates: names have none, and SQL may have many.
        const std::size_t equals = text.find('=');
        if (equals == std::string::npos || equals == 0)
            return usageError("--filter " + text + ": expected NAME=SQL");
        const std::string name = text.substr(0, equals);
        if (!tessera_host::isFilterName(name))
            return usageError("--filter " + text + ": the filters are called " +
                              tessera_host::filterNameList());
        filters.insert_or_assign(name, text.substr(equals + 1));
    }
    return filters;
}

// The format that --format names, or the file's ending. Where both name one they must agree: a picture under
// the ending of another format opens nowhere.
Expected<const OutputFormat*> chooseFormat(const RawOptions& raw) {
    const std::string& output = raw.options.output;
    const OutputFormat* byEnding = formatOfFile(output);
    if (raw.format.empty()) {
        if (byEnding != nullptr) return byEnding;
        return usageError(output + ": the ending does not name a format; add --format with " + formatNames());
    }
    if (byEnding != nullptr && byEnding->name != raw.format && !isStandardOutput(output))
        return usageError(output + ": the ending names the format " + std::string(byEnding->name) +
                          ", but --format is " + raw.format);
    return findOutputFormat(raw.format);
}

// Completes and checks what CLI11 has read.
Expected<void> finishOptions(RawOptions& raw) {
    Options& options = raw.options;
    if (!raw.mode.empty()) options.mode = raw.mode;
    options.fit = shapeOf(raw.fit).value_or(options.fit);
    options.maxMemory = sizeOf(raw.maxMemory).value_or(options.maxMemory);
    auto filters = readFilters(raw.filters);
    if (!filters) return std::move(filters).error();
    options.filters = *std::move(filters);
    // A command that reads requests from standard input needs its document elsewhere.
    if (options.document == "-") {
        if (!options.command->readsDocumentFromInput)
            return usageError(std::string(options.command->name) +
                              " reads requests from standard input; VIEWPOINT must be a file");
        options.document = "/dev/stdin";
    }
    // What follows concerns commands that write a diagram.
    if (!hasGroup(*options.command, OptionGroup::output)) return {};
    const auto format = chooseFormat(raw);
    if (!format) return format.error();
    options.format = *format;
    if (auto fits = checkAgainst(options); !fits) return fits;
    return checkPictureOptions(options, raw.scale != nullptr && raw.scale->count() > 0, !raw.fit.empty());
}

// CLI11 ends with an exception also for help and version, which go to standard output. `command` is the word
// that should have been a subcommand, "" when there was none.
Expected<void> finishParsing(const CLI::App& app, const CLI::ParseError& error, const std::string& command) {
    if (error.get_exit_code() != 0 && app.get_subcommands().empty() && !command.empty())
        return usageError("there is no command " + command + "; there are " + commandNames());
    if (error.get_exit_code() != 0) return usageError(error.what());
    std::ostringstream text;
    // Formed in memory, because only printToStdout() reports that standard output takes no more.
    (void)app.exit(error, text, text);
    return printToStdout(text.str());
}

}  // namespace

Expected<std::optional<Options>> parseCommandLine(int argc, const char* const* argv) {
    RawOptions raw;
    CLI::App app("Fills diagrams with values from a result database.", "tessera");
    app.set_version_flag("--version", std::string("tessera ") + version);
    app.require_subcommand(1);
    for (const Command& command : commands()) {
        CLI::App* parser = app.add_subcommand(std::string(command.name), command.help);
        for (const OptionGroup group : command.groups)
            addGroup(group, *parser, raw);
        // Runs for the subcommand that the command line names, and for no other.
        parser->final_callback([&raw, &command] { raw.options.command = &command; });
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        auto finished = finishParsing(app, error, argc > 1 ? argv[1] : "");
        if (!finished) return std::move(finished).error();
        return std::optional<Options>();
    }
    if (auto finished = finishOptions(raw); !finished) return std::move(finished).error();
    return std::optional(std::move(raw.options));
}

}  // namespace tessera_cli
