#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <system_error>
#include <utility>

#include "cli/commands.h"
#include "cli/interrupt.h"
#include "cli/message.h"
#include "host/catalogs/catalogs.h"
#include "host/engine/engine_registry.h"
#include "host/lint/reversal/acyclic_viewpoint.h"

namespace tessera_cli {
namespace {

using tessera_host::Error;
using tessera_host::ErrorKind;
using tessera_host::Expected;
using tessera_host::IResult;
using tessera_host::Viewpoint;

// The same error with the name of the file, and the position, in its text.
Error named(const Error& error, const std::string& file) {
    return {error.kind, describe(error, file), {}};
}

// The viewpoint with links reversed where the options want it; otherwise the same, its cycles reported.
Expected<Viewpoint::Pointer> treatCycles(const Viewpoint::Pointer& viewpoint, const Options& options,
                                         relay2::IMessenger& messages) {
    tessera_host::AcyclicViewpoint treated{viewpoint, {}};
    if (options.acyclic) {
        auto acyclic = makeAcyclic(viewpoint, interruptToken());
        if (!acyclic) return named(acyclic.error(), options.document);
        treated = *std::move(acyclic);
    } else {
        treated.messages = describeCycles(*viewpoint, interruptToken());
    }
    if (isInterrupted()) return tessera_host::cancelledError();
    postAll(treated.messages, messages);
    return treated.viewpoint;
}

// A folder that does not exist is a mistake of the command line; catalogues that it lacks are warnings.
Expected<void> requireCatalogFolder(const Options& options) {
    std::error_code unknown;
    if (options.catalogs.empty() || std::filesystem::is_directory(options.catalogs, unknown)) return {};
    return Error{ErrorKind::cannotOpen, options.catalogs + ": there is no such folder"};
}

using CatalogSource = std::shared_ptr<const optstore2::IMessageCatalogSource>;

// The catalogues that the options name, or the source without catalogues.
CatalogSource catalogsOf(const Options& options, relay2::IMessenger& messages) {
    CatalogSource none = optstore2::getMessageCatalogSource();
    if (options.catalogs.empty()) return none;
    const auto catalogs = tessera_host::readCatalogs(options.catalogs, options.locale);
    if (!catalogs) {
        messages.post(relay2::severity_t::warning, catalogs.error().text, {});
        return none;
    }
    for (const std::string& problem : catalogs->problems)
        messages.post(relay2::severity_t::warning, problem, {});
    return catalogs->source;
}

}  // namespace

Expected<std::shared_ptr<IResult>> openResult(const Options& options) {
    auto result = tessera_host::EngineRegistry::builtIn().open(options.database, {}, interruptToken());
    if (!result) return named(result.error(), options.database);
    return result;
}

Expected<Input> openInput(const Options& options, relay2::IMessenger& messages) {
    if (auto folder = requireCatalogFolder(options); !folder) return std::move(folder).error();
    const auto read = Viewpoint::readFile(options.document, interruptToken());
    if (!read) return named(read.error(), options.document);
    auto result = openResult(options);
    if (!result) return std::move(result).error();
    auto viewpoint = treatCycles(*read, options, messages);
    if (!viewpoint) return std::move(viewpoint).error();
    CatalogSource catalogs = catalogsOf(options, messages);
    // The diagram library takes its names from the process's source; its handlers cannot be given one. A
    // program with one pane loses nothing by that.
    optstore2::setMessageCatalogSource(catalogs);
    postAll((*viewpoint)->problems(), messages);
    return Input{*std::move(viewpoint), *std::move(result), std::move(catalogs)};
}

tessera_host::Filters filtersOf(const Viewpoint& viewpoint, const Options& options) {
    tessera_host::Filters filters = viewpoint.filters();
    for (const auto& [name, predicate] : options.filters)
        tessera_host::setFilter(filters, name, {predicate, {}});
    return filters;
}

tessera_host::QueryLimits queryLimitsOf(const Options& options) {
    return {std::chrono::milliseconds(static_cast<std::int64_t>(options.queryTimeout * 1000)),
            options.maxMemory};
}

tessera_1::LayoutLimits layoutLimitsOf(const Options& options, const Viewpoint& viewpoint) {
    // With the first numbers, a document of less than 1 MB takes less than 2 GiB, whatever it draws and shows. It
    // declares at most 71,000 nodes, so it reaches the others nowhere.
    const auto& structure = viewpoint.structure();
    const std::size_t declared = structure.nodes().size() + structure.links().size();
    tessera_1::LayoutLimits limits = options.limits;
    if (limits.maxElements == 0) limits.maxElements = std::max<std::size_t>(600'000, 8 * declared);
    if (limits.maxIdBytes == 0)
        limits.maxIdBytes = std::max<std::size_t>(std::size_t{1} << 27U, 1024 * declared);
    return limits;
}

std::unique_ptr<tessera_host::Pane> makePane(const Input& input, const Options& options,
                                             tessera_1::ILayoutWatcher* watcher,
                                             std::shared_ptr<tessera_host::CellRecord> record) {
    const tessera_host::PaneOptions settings{
        queryLimitsOf(options), {layoutLimitsOf(options, *input.viewpoint), watcher}, std::move(record)};
    return std::make_unique<tessera_host::Pane>(input.viewpoint, input.result,
                                                filtersOf(*input.viewpoint, options), settings);
}

int reportError(const Error& error) {
    if (error.isCancelled() || isInterrupted()) return exitInterrupted;
    printMessage(error.text);
    switch (error.kind) {
        case ErrorKind::cannotOpen:
            return exitCannotOpen;
        case ErrorKind::usage:
            return exitUsage;
        case ErrorKind::cancelled:
            return exitInterrupted;
        case ErrorKind::failed:
            break;
    }
    return exitFailed;
}

}  // namespace tessera_cli
