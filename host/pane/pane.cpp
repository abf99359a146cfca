#include "host/pane/pane.h"

#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>

#include <chrono>
#include <filesystem>
#include <utility>
#include <vector>

#include "core/factory.h"
#include "host/catalogs/catalogs.h"
#include "host/document/text.h"
#include "host/engine/engine_registry.h"
#include "host/engine/query_library.h"
#include "host/engine/token_progress.h"
#include "host/lint/reversal/acyclic_viewpoint.h"

namespace tessera_host {
namespace {

using basekit2::error_code_t;
using basekit2::variant_bag_t;

log4cplus::Logger logger() {
    return log4cplus::Logger::getInstance("tessera.host");
}

// Milliseconds since `begin`.
std::int64_t since(std::chrono::steady_clock::time_point begin) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin)
        .count();
}

// The base handler of the pane: its configuration is the viewpoint.
class ViewpointSource final : public panelcore_1::IRequestHandler {
  public:
    explicit ViewpointSource(Viewpoint::Pointer viewpoint) : m_viewpoint(std::move(viewpoint)) {}

    [[nodiscard]] std::string getDomainName() const override { return "viewpoint"; }

    error_code_t handleRequest(const std::string& name, const variant_bag_t& /*in*/, variant_bag_t& out,
                               relay2::IProgress* /*progress*/) override {
        if (name != "config")
            return error_code_t::raise(bk2::error::FailedTo(RTBASE_2_18::strings::ustring8(name)), __func__,
                                       "host/pane/pane", __LINE__);
        out = m_viewpoint->bag();
        return {};
    }

  private:
    const Viewpoint::Pointer m_viewpoint;
};

class PaneFilters final : public panelcore_1::IFilterMgr {
  public:
    explicit PaneFilters(const Filters& filters) {
        for (const auto& [name, filter] : filters)
            m_names.push_back(name);
    }
    [[nodiscard]] std::vector<std::string> getFilterNames() const override { return m_names; }

  private:
    std::vector<std::string> m_names;
};

void installCatalogs(const PaneSettings& settings, relay2::IMessenger& messenger) {
    if (settings.catalogs.empty()) return;
    std::vector<std::string> problems;
    auto catalogs = readCatalogs(settings.catalogs, settings.locale, problems);
    for (const std::string& problem : problems)
        messenger.post(relay2::severity_t::warning, problem, {});
    if (catalogs) optstore2::setMessageCatalogSource(std::move(catalogs));
}

// The document's filters with those of the settings in their place.
Filters filtersOf(const Declarations& declarations, const PaneSettings& settings) {
    Filters filters = declarations.filters();
    for (const auto& [name, predicate] : settings.filters)
        setFilter(filters, name, {predicate, {}});
    return filters;
}

QueryLimits queryLimits(const PaneSettings& settings) {
    return {std::chrono::milliseconds(static_cast<std::int64_t>(settings.queryTimeout * 1000))};
}

}  // namespace

Pane::Pane(std::shared_ptr<SnapshotSource> source, std::shared_ptr<panelcore_1::IRequestHandler> handler)
    : m_source(std::move(source)), m_handler(std::move(handler)) {}

std::unique_ptr<Pane> Pane::open(const PaneSettings& settings, relay2::IMessenger& messenger,
                                 relay2::IProgress* progress, OpenError& error) {
    const auto begin = std::chrono::steady_clock::now();
    std::error_code unknown;
    if (!settings.catalogs.empty() && !std::filesystem::is_directory(settings.catalogs, unknown)) {
        error = {settings.catalogs + ": there is no such folder", true, false};
        return nullptr;
    }
    const CancelToken cancel = tokenOf(progress);
    auto read = Viewpoint::readFile(settings.document, cancel);
    if (!read) {
        error = {describe(read.error(), settings.document), read.error().kind == ErrorKind::cannotOpen,
                 read.error().isCancelled()};
        return nullptr;
    }
    auto result = EngineRegistry::builtIn().open(settings.database, {}, cancel);
    if (!result) {
        error = {describe(result.error(), settings.database), true, result.error().isCancelled()};
        return nullptr;
    }
    auto source = std::make_shared<SnapshotSource>(*std::move(result));
    AcyclicViewpoint acyclic{*read, {}};
    if (!settings.acyclic)
        acyclic.messages = describeCycles(*acyclic.viewpoint, cancel);
    else if (auto made = makeAcyclic(*read, cancel))
        acyclic = *std::move(made);
    if (cancel.isCancelled()) {
        error = {settings.document + ": cancelled", false, true};
        return nullptr;
    }
    postAll(acyclic.messages, messenger);
    const Viewpoint::Pointer viewpoint = acyclic.viewpoint;
    installCatalogs(settings, messenger);

    const auto declarations = viewpoint->declarations();
    if (settings.onViewpoint) settings.onViewpoint(viewpoint);
    postAll(viewpoint->problems(), messenger);
    const Filters filters = filtersOf(*declarations, settings);
    auto handler = tessera_1::createDiagramViewRequestHandlerWithOptions(
        basekit2::make_counted<QueryLibrary>(declarations),
        basekit2::make_counted<InputData>(source, declarations, filters, &messenger, queryLimits(settings)),
        std::make_shared<ViewpointSource>(viewpoint), std::make_shared<PaneFilters>(filters), &messenger,
        settings.layout);
    LOG4CPLUS_DEBUG(logger(), settings.document << " on " << settings.database << " opened in "
                                                << since(begin) << " ms: " << declarations->queries().size()
                                                << " queries, " << filters.size() << " filters");
    return std::unique_ptr<Pane>(new Pane(std::move(source), std::move(handler)));
}

error_code_t Pane::request(const std::string& name, const variant_bag_t& in, variant_bag_t& out,
                           relay2::IProgress* progress) {
    const std::scoped_lock lock(m_mutex);
    const SnapshotHold hold(*m_source);
    const auto begin = std::chrono::steady_clock::now();
    const error_code_t code = m_handler->handleRequest(name, in, out, progress);
    LOG4CPLUS_DEBUG(logger(), "request \"" << oneLine(name) << "\" answered " << code.name() << " in "
                                           << since(begin) << " ms");
    return code;
}

}  // namespace tessera_host
