// The command line of the program.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "core/layout_options.h"
#include "draw/geometry.h"
#include "host/engine/result.h"
#include "host/error.h"

namespace tessera_cli {

struct Command;
struct OutputFormat;

struct Options {
    const Command* command = nullptr;  // never null once parsed
    std::string document;
    std::string database;                  // "" when none was given
    std::string against;                   // another result to compare with; "" is none
    std::string output;                    // "" is standard output
    const OutputFormat* format = nullptr;  // never null for a command that writes a diagram
    std::optional<std::string> mode;
    std::map<std::string, std::string> filters;
    std::string catalogs;
    std::string locale;
    std::string logConfig;
    std::string logLevel;
    double queryTimeout = 600;  // seconds
    std::uint64_t maxMemory = tessera_host::QueryLimits().memory;
    bool acyclic = false;
    bool fix = false;
    tessera_1::LayoutLimits limits{0, 0};  // 0: by the size of the document
    std::string stopAfter;                 // a stage of "create"; "" is none
    std::string dumpFolder;                // where the graph is written after each stage; "" is none
    std::string theme;                     // of a picture: "light", "dark" or "auto"
    std::string direction;                 // of a picture: "lr", "tb" or "auto"
    tessera_draw::Size fit{16, 10};        // the shape that "auto" is for
    std::string fold;                      // of a picture: "auto" or "off"
    std::string layers;                    // of a picture: "links" or "document"
    std::string paper;       // of a PDF: "a4", "a3" or "letter"; "" is one page as large as the picture
    std::string failOn;      // a level of the document; "" is none
    std::string keep;        // the layout that a picture keeps; "" is none
    std::string saveLayout;  // where the layout of a picture is written; "" is nowhere
    double scale = 1;        // pixels of a PNG for one of the drawing
    bool timePasses = false;
    bool verify = false;
};

// Exit statuses of the program.
enum ExitStatus : int {
    exitDone = 0,
    exitFailed = 1,
    exitUsage = 2,
    exitCannotOpen = 3,
    exitInterrupted = 130
};

// Reads the command line. None when there is nothing to run, because help or the version has been printed.
// The error has the kind usage, or cannotOpen when help could not be printed. Called once, by main.
[[nodiscard]] tessera_host::Expected<std::optional<Options>> parseCommandLine(int argc,
                                                                              const char* const* argv);

}  // namespace tessera_cli
