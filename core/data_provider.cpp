#include "core/data_provider.h"

#include <cassert>
#include <chrono>
#include <utility>
#include <vector>

#include "core/check.h"
#include "core/layout_watch.h"

namespace tessera_1 {

TESSERA_SOURCE_UNIT("core/data_provider");

using basekit2::error_code_t;
using basekit2::variant_bag_t;

namespace {

// Tells the watcher, if there is one, of the stages of one "create". Debug builds verify the graph behind
// each.
class StageWatch {
  public:
    StageWatch(relay2::IProgress* progress, const LayoutOptions& options)
        : m_progress(progress), m_options(options) {}
    StageWatch(const StageWatch&) = delete;
    StageWatch& operator=(const StageWatch&) = delete;
    ~StageWatch() {
        if (m_graph) m_graph->m_progress = nullptr;
    }

    // The passes of this graph may be cancelled, as long as this lives.
    void lendProgressTo(const std::shared_ptr<view_model::Graph>& graph) {
        m_graph = graph;
        m_graph->m_progress = m_progress;
        m_graph->m_limits = m_options.limits;
    }

    bool goesOn(const std::string& stage, const view_model::Graph& graph) {
        if (graph.m_isCancelled) return false;
        assert(verifyGraph(graph, stage).empty());
        if (m_options.watcher == nullptr) return true;
        const auto took = Clock::now() - m_begin;
        const bool goesOn = m_options.watcher->stageEnded({stage, took, graph, graph.m_isCutShort});
        m_begin = Clock::now();
        return goesOn;
    }

  private:
    using Clock = std::chrono::steady_clock;

    relay2::IProgress* const m_progress;
    std::shared_ptr<view_model::Graph> m_graph;
    const LayoutOptions& m_options;
    Clock::time_point m_begin = m_options.watcher == nullptr ? Clock::time_point() : Clock::now();
};

}  // namespace

std::unique_ptr<DataProvider> DataProvider::create(variant_bag_t& config, variant_bag_t& /*out*/,
                                                   basekit2::sptr_t<qlib_1::IQueryLibrary> queryLibrary,
                                                   relay2::IMessenger* messenger,
                                                   basekit2::sptr_t<qlib_1::IInputData> inputData,
                                                   relay2::IProgress* progress) {
    return createWithOptions(config, std::move(queryLibrary), messenger, std::move(inputData), progress, {});
}

std::unique_ptr<DataProvider> DataProvider::createWithOptions(
    variant_bag_t& config, basekit2::sptr_t<qlib_1::IQueryLibrary> queryLibrary,
    relay2::IMessenger* messenger, basekit2::sptr_t<qlib_1::IInputData> inputData,
    relay2::IProgress* progress, const LayoutOptions& options) {
    auto dp = std::make_unique<DataProvider>();
    dp->m_queryLibrary = queryLibrary;
    dp->m_inputData = inputData;
    StageWatch watch(progress, options);
    dp->parseViewpoint(config, std::move(queryLibrary), messenger, std::move(inputData), dp->m_graph);
    TESSERA_CHECK(dp->m_graph, nullptr);
    watch.lendProgressTo(dp->m_graph);
    if (!watch.goesOn("viewpoint", *dp->m_graph)) return dp;
    TESSERA_CHECK(dp->getData(progress).succeeded(), nullptr);
    if (!watch.goesOn("data", *dp->m_graph)) return dp;
    TESSERA_CHECK(dp->m_graph->setLinkInfoAsNodes().succeeded(), nullptr);
    TESSERA_CHECK(dp->m_graph->setGroupInfoAsNodes().succeeded(), nullptr);
    if (!watch.goesOn("info_nodes", *dp->m_graph)) return dp;
    dp->m_graph->createDummyLinksForGroups();
    if (!watch.goesOn("group_links", *dp->m_graph)) return dp;
    TESSERA_CHECK(dp->m_graph->calculateHierarchicalLevels().succeeded(), nullptr);
    if (!watch.goesOn("hierarchical_levels", *dp->m_graph)) return dp;
    TESSERA_CHECK(dp->m_graph->addDummyNodesForLabels().succeeded(), nullptr);
    if (!watch.goesOn("label_dummies", *dp->m_graph)) return dp;
    TESSERA_CHECK(dp->m_graph->addDummyNodesForInterfaces().succeeded(), nullptr);
    if (!watch.goesOn("interfaces", *dp->m_graph)) return dp;
    TESSERA_CHECK(dp->m_graph->adjustLabelLocations().succeeded(), nullptr);
    if (!watch.goesOn("label_locations", *dp->m_graph)) return dp;
    dp->m_graph->setNodeAlignings();
    if (!watch.goesOn("node_alignings", *dp->m_graph)) return dp;
    (void)dp->m_graph->setGroupLevels();
    (void)watch.goesOn("group_levels", *dp->m_graph);
    return dp;
}

error_code_t DataProvider::getData(relay2::IProgress* progress) {
    if (progress && progress->isCancelled())
        return TESSERA_RAISE(bk2::error::Cancelled(_U("Cancelled before the data was fetched")));
    std::vector<std::shared_ptr<view_model::DisplayInfo>> displayInfos;
    m_graph->getDisplayInfos(displayInfos);
    error_code_t result;
    for (const auto& displayInfo : displayInfos) {
        if (!displayInfo) continue;
        if (!displayInfo->setDataFromResult(m_queryLibrary, m_inputData, progress).is_success())
            result = error_code_t::false_code();
    }
    return result;
}

error_code_t DataProvider::getMetadata(variant_bag_t& out, relay2::IProgress* progress) {
    if (progress && progress->isCancelled())
        return TESSERA_RAISE(bk2::error::Cancelled(_U("Cancelled before the diagram was written")));
    m_graph->dumpTotalInfo(out);
    m_graph->dumpNodes(out);
    m_graph->dumpLinks(out);
    if (progress && progress->isCancelled())
        return TESSERA_RAISE(bk2::error::Cancelled(_U("Cancelled after the diagram was written")));
    return {};
}

error_code_t DataProvider::refresh(variant_bag_t& out, relay2::IProgress* progress) {
    (void)getData(progress);  // a value that could not be fetched stays as it was
    return getMetadata(out, progress);
}

error_code_t DataProvider::changeDisplayMode(const variant_bag_t& in, variant_bag_t& out,
                                             relay2::IProgress* progress) {
    const variant_bag_t* mode = in.get_variant_bag("mode");
    if (mode == nullptr)
        return TESSERA_RAISE(bk2::error::IsNot.Valid.Data(_U("The request names no display mode")));
    const basekit2::variant_t* value = mode->get("");
    if (value && !value->can_get<const char*>())
        return TESSERA_RAISE(bk2::error::IsNot.Valid.Data(_U("The request's display mode is no text")));
    m_graph->m_displayMode = getAttrAndLocalize(*mode, "", false);
    return getMetadata(out, progress);
}

}  // namespace tessera_1
