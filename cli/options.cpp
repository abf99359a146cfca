#include "cli/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <sstream>
#include <vector>

#include "cli/message.h"
#include "core/layout_watch.h"

namespace tessera_cli {
namespace {

constexpr const char* version = TESSERA_VERSION;

struct RawOptions {
    Options options;
    std::vector<std::string> filters;
    std::string mode;
    CLI::Option* scale = nullptr;
};

std::string isNotEmpty(const std::string& text) {
    return text.empty() ? "the name of a file is empty" : "";
}

void addCommon(CLI::App& command, RawOptions& raw) {
    Options& options = raw.options;
    command.add_option("VIEWPOINT", options.document, "The viewpoint document (XML)")
        ->required()
        ->check(isNotEmpty);
    command
        .add_option("--filter", raw.filters,
                    "Replaces a filter of the document, \"selection\" or \"global\"; with nothing behind the "
                    "=, removes it")
        ->type_name("NAME=SQL")
        ->take_all()
        ->allow_extra_args(false);
    CLI::Option* locale =
        command.add_option("--locale", options.locale, "Language of the message catalogues, for example de")
            ->type_name("NAME");
    CLI::Option* catalogs =
        command.add_option("--catalogs", options.catalogs, "Folder of the message catalogues")
            ->type_name("DIR");
    locale->needs(catalogs);
    catalogs->needs(locale);
    command.add_option("--log-config", options.logConfig, "log4cplus properties file")->type_name("FILE");
    command
        .add_option("--log-level", options.logLevel,
                    "off, fatal, error, warn, info (the default), debug or trace")
        ->type_name("LEVEL")
        ->check(CLI::IsMember({"off", "fatal", "error", "warn", "info", "debug", "trace"}, CLI::ignore_case));
    command.add_option("--query-timeout", options.queryTimeout, "Stops a query that runs longer (600)")
        ->type_name("SECONDS")
        ->check([](const std::string& text) {
            double seconds = 0;
            const bool isNumber = CLI::detail::lexical_cast(text, seconds);
            return isNumber && seconds >= 0.001 && seconds <= 1e9 ? "" : text + " is not from 0.001 to 1e9";
        });
}

void addLimits(CLI::App& command, RawOptions& raw) {
    const auto isCount = [](const std::string& text) {
        const bool isNumber =
            !text.empty() && text.size() <= 15 &&
            std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c); });
        return isNumber && text.find_first_not_of('0') != std::string::npos
                   ? ""
                   : "\"" + text + "\" is no whole number of 1 and more";
    };
    command
        .add_option("--max-elements", raw.options.limits.maxElements,
                    "No dummy box is added to a diagram of that many nodes and links (5000000)")
        ->type_name("N")
        ->check(isCount);
    command
        .add_option("--max-id-bytes", raw.options.limits.maxIdBytes,
                    "No dummy box is added when the ids would take more bytes together (1073741824)")
        ->type_name("N")
        ->check(isCount);
}

void addAcyclic(CLI::App& command, RawOptions& raw) {
    command.add_flag("--acyclic", raw.options.acyclic,
                     "Turns the fewest links it can around before the document is read, so that none go in a "
                     "circle inside a group; the picture means the same");
}

void addFix(CLI::App& command, RawOptions& raw) {
    CLI::Option* fix = command.add_flag(
        "--fix", raw.options.fix,
        "Writes the document with the fewest links turned around so that none go in a circle inside a group, "
        "and checks that one; nothing else in it changes");
    command
        .add_option("-o,--output", raw.options.output,
                    "Where to write the document, which may be its own file; standard output without it")
        ->type_name("FILE")
        ->check(isNotEmpty)
        ->needs(fix);
}

// What shows the layout at work.
void addInspection(CLI::App& command, RawOptions& raw) {
    Options& options = raw.options;
    command
        .add_option("--stop-after", options.stopAfter, "Leaves out the stages of the layout behind this one")
        ->type_name("PASS")
        ->check(CLI::IsMember(tessera_1::layoutStages()));
    command
        .add_option("--dump-passes", options.dumpFolder,
                    "Writes the graph as text after each stage, into a file of its own")
        ->type_name("DIR")
        ->check(isNotEmpty);
    command.add_flag("--time-passes", options.timePasses, "Prints how long each stage took");
    command.add_flag("--verify", options.verify, "Looks for errors of the layout after each stage");
}

CLI::Option* addDatabase(CLI::App& command, RawOptions& raw) {
    return command.add_option("--db", raw.options.database, "The result database (SQLite); it is only read")
        ->type_name("RESULT")
        ->check(isNotEmpty);
}

// What is asked of pictures.
void addPicture(CLI::App& command, RawOptions& raw) {
    Options& options = raw.options;
    command
        .add_option("--theme", options.theme,
                    "Colours of a picture: light, dark, or auto (the default: as the reader's screen)")
        ->check(CLI::IsMember({"light", "dark", "auto"}));
    command
        .add_option("--direction", options.direction,
                    "Where a picture's layers go: lr (from left to right, the default) or tb (top to bottom)")
        ->check(CLI::IsMember({"lr", "tb"}));
    raw.scale =
        command.add_option("--scale", options.scale, "Size of a PNG (1)")
            ->type_name("N")
            ->check([](const std::string& text) {
                double scale = 0;
                const bool isNumber = CLI::detail::lexical_cast(text, scale);
                return isNumber && scale >= 0.05 && scale <= 20 ? "" : text + " is not from 0.05 to 20";
            });
}

// What of the picture's options does not go with the format, or "".
std::string pictureProblem(const Options& options, bool hasScale) {
    const bool isPicture = options.format == "svg" || options.format == "png" || options.format == "pdf";
    if (!options.theme.empty() && !isPicture) return "--theme is for pictures: svg, png or pdf";
    if (!options.direction.empty() && !isPicture) return "--direction is for pictures: svg, png or pdf";
    return hasScale && options.format != "png" ? "--scale is for png" : "";
}

// Splits NAME=SQL. Answers what is wrong, or "".
std::string readFilters(const std::vector<std::string>& texts, std::map<std::string, std::string>& filters) {
    for (const std::string& text : texts) {
        const std::size_t equals = text.find('=');
        if (equals == std::string::npos || equals == 0) return "--filter " + text + ": expected NAME=SQL";
        const std::string name = text.substr(0, equals);
        if (name != "selection" && name != "global")
            return "--filter " + text + ": the filters are called \"selection\" and \"global\"";
        filters.insert_or_assign(name, text.substr(equals + 1));
    }
    return {};
}

const std::vector<std::string>& formats() {
    static const std::vector<std::string> all = {"json", "xml", "svg", "png", "pdf"};
    return all;
}

// From the option or else from the file's ending; "" when the ending says nothing of use.
std::string formatOf(const Options& options) {
    if (!options.format.empty()) return options.format;
    const std::size_t dot = options.output.rfind('.');
    if (options.output.empty() || options.output == "-") return "json";
    std::string ending = dot == std::string::npos ? "" : options.output.substr(dot + 1);
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    return std::find(formats().begin(), formats().end(), ending) != formats().end() ? ending : "";
}

int usageError(const std::string& text) {
    printMessage(text);
    printMessage("try: tessera --help");
    return exitUsage;
}

// Help and version go to standard output; what is wrong with the usage is a message. `command` is the word
// that should have been a subcommand, "" when there was none.
int finishParsing(const CLI::App& app, const CLI::ParseError& error, const std::string& command) {
    if (error.get_exit_code() != 0 && app.get_subcommands().empty() && !command.empty())
        return usageError("there is no command " + command + "; there are render, session and check");
    if (error.get_exit_code() != 0) return usageError(error.what());
    std::ostringstream text;
    (void)app.exit(error, text, text);
    return printText(text.str()) ? exitDone : exitUnopened;
}

}  // namespace

std::optional<Options> parseCommandLine(int argc, const char* const* argv, int& exitStatus) {
    RawOptions raw;
    CLI::App app("Fills diagrams with values from a result database.", "tessera");
    app.set_version_flag("--version", std::string("tessera ") + version);
    app.require_subcommand(1);

    CLI::App* render = app.add_subcommand("render", "Makes one diagram and writes it");
    addCommon(*render, raw);
    addDatabase(*render, raw)->required();
    addAcyclic(*render, raw);
    addLimits(*render, raw);
    addInspection(*render, raw);
    render->add_option("-o,--output", raw.options.output, "Where to write; standard output without it")
        ->type_name("FILE")
        ->check(isNotEmpty);
    render
        ->add_option(
            "--format", raw.options.format,
            "json, xml, svg, png or pdf; without it the file's ending decides, json for standard output")
        ->check(CLI::IsMember(formats()));
    addPicture(*render, raw);
    CLI::Option* mode =
        render->add_option("--mode", raw.mode, "Display mode: bandwidth (the default), ratio or size")
            ->check(CLI::IsMember({"bandwidth", "ratio", "size"}));

    CLI::App* session =
        app.add_subcommand("session", "Answers requests, one JSON line each, until end of input");
    addCommon(*session, raw);
    addDatabase(*session, raw)->required();
    addAcyclic(*session, raw);
    addLimits(*session, raw);

    CLI::App* check = app.add_subcommand("check", "Reports everything wrong with a document");
    addCommon(*check, raw);
    addDatabase(*check, raw);
    addFix(*check, raw);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        exitStatus = finishParsing(app, error, argc > 1 ? argv[1] : "");
        return std::nullopt;
    }

    Options options = raw.options;
    options.command = render->parsed()    ? Command::render
                      : session->parsed() ? Command::session
                                          : Command::check;
    if (mode->count() > 0) options.mode = raw.mode;
    options.format = formatOf(options);
    std::string problem = readFilters(raw.filters, options.filters);
    if (problem.empty() && options.command == Command::render && options.format.empty())
        problem =
            options.output + ": the ending names no format; add --format with json, xml, svg, png or pdf";
    if (problem.empty()) problem = pictureProblem(options, raw.scale->count() > 0);
    if (!problem.empty()) {
        exitStatus = usageError(problem);
        return std::nullopt;
    }
    return options;
}

}  // namespace tessera_cli
