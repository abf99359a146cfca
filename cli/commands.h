// The program's subcommands, and what they open. Each subcommand returns the program's exit status.
#pragma once

#include <memory>

#include "cli/options.h"
#include "host/error.h"
#include "host/pane/pane.h"

namespace tessera_cli {

// Makes one diagram and writes it.
int render(const Options& options);

// Answers requests, a line each, until end of input.
int session(const Options& options);

// Reports everything wrong with a document.
int check(const Options& options);

// The document and the result that the options name.
struct Input {
    tessera_host::Viewpoint::Pointer viewpoint;
    std::shared_ptr<tessera_host::IResult> result;
};
// Reads the document and opens the result; reverses links and installs catalogues as the options say. What
// was noticed goes to `messages`. The error's text names the file.
[[nodiscard]] tessera_host::Expected<Input> openInput(const Options& options, relay2::IMessenger& messages);

// The result that the options name.
[[nodiscard]] tessera_host::Expected<std::shared_ptr<tessera_host::IResult>> openResult(
    const Options& options);

// The document's filters with those of the options in their place.
[[nodiscard]] tessera_host::Filters filtersOf(const tessera_host::Viewpoint& viewpoint,
                                              const Options& options);

// A pane on the input. `watcher` may be null and otherwise outlives the pane.
[[nodiscard]] std::unique_ptr<tessera_host::Pane> makePane(const Input& input, const Options& options,
                                                           tessera_1::ILayoutWatcher* watcher = nullptr);

// Prints the error's text, unless the program was interrupted; returns the exit status of its kind.
[[nodiscard]] int reportError(const tessera_host::Error& error);

}  // namespace tessera_cli
