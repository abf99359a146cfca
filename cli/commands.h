// The program's subcommands, and what they open. Each subcommand returns the program's exit status.
#pragma once

#include <memory>

#include "cli/options.h"
#include "host/error.h"
#include "host/pane/pane.h"
#include "platform/optstore2/message_catalog_source.h"

namespace tessera_cli {

// Makes one diagram and writes it.
int render(const Options& options);

// Runs the requests on standard input, a line each, and writes a response to each, until end of input.
int session(const Options& options);

// Reports everything wrong with a document.
int check(const Options& options);

// What the options name. No pointer is null.
struct Input {
    tessera_host::Viewpoint::Pointer viewpoint;
    std::shared_ptr<tessera_host::IResult> result;
    std::shared_ptr<const optstore2::IMessageCatalogSource> catalogs;
};
// Reads the document and opens the result; reverses links as the options say, and installs the catalogues for
// the process. Warnings and notes go to `messages`. The error's text names the file.
[[nodiscard]] tessera_host::Expected<Input> openInput(const Options& options, relay2::IMessenger& messages);

// The result that the options name.
[[nodiscard]] tessera_host::Expected<std::shared_ptr<tessera_host::IResult>> openResult(
    const Options& options);

// The document's filters with those of the options in their place.
[[nodiscard]] tessera_host::Filters filtersOf(const tessera_host::Viewpoint& viewpoint,
                                              const Options& options);

// How large the diagram may become: what the options say, otherwise by what the document declares.
[[nodiscard]] tessera_1::LayoutLimits layoutLimitsOf(const Options& options,
                                                     const tessera_host::Viewpoint& viewpoint);

// How much the queries may use.
[[nodiscard]] tessera_host::QueryLimits queryLimitsOf(const Options& options);

// A pane on the input. `watcher` may be null and otherwise outlives the pane; `record` may be null (see
// PaneOptions).
[[nodiscard]] std::unique_ptr<tessera_host::Pane> makePane(
    const Input& input, const Options& options, tessera_1::ILayoutWatcher* watcher = nullptr,
    std::shared_ptr<tessera_host::CellRecord> record = nullptr);

// Prints the error's text, unless the program was interrupted; returns the exit status of its kind.
[[nodiscard]] int reportError(const tessera_host::Error& error);

}  // namespace tessera_cli
