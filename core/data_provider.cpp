#include "core/data_provider.h"

#include <array>
#include <cassert>
#include <type_traits>
#include <utility>
#include <vector>

#include "core/check.h"
#include "core/layout_watch.h"
#include "core/pane_provider.h"
#include "core/view_model/output/unknown_mode.h"

namespace tessera_1 {

TESSERA_SOURCE_UNIT("core/data_provider");

using basekit2::error_code_t;
using basekit2::variant_bag_t;
using view_model::Graph;
using view_model::LayoutRun;
using Request = PaneProvider::Request;

namespace {

// A statement of "create".
struct Step {
    const char* stage;      // that it belongs to
    const char* condition;  // tested after it; null when the outcome is not tested
    bool (*run)(PaneProvider& dp, const Request& request);  // returns whether the condition holds
};

bool readViewpoint(PaneProvider& dp, const Request& request) {
    dp.parseWithoutCopy(*request.config, dp.m_queryLibrary, request.messenger, dp.m_inputData, dp.m_graph);
    return true;
}

bool hasGraph(PaneProvider& dp, const Request& /*request*/) {
    return dp.m_graph != nullptr;
}

bool fetchData(PaneProvider& dp, const Request& request) {
    return dp.getData(request.progress).succeeded();
}

template <auto pass>
bool onGraph(PaneProvider& dp, const Request& /*request*/) {
    if constexpr (std::is_void_v<decltype((*dp.m_graph.*pass)())>) {
        (*dp.m_graph.*pass)();
        return true;
    } else {
        return (*dp.m_graph.*pass)().succeeded();
    }
}

// A pass that takes long.
template <error_code_t (*pass)(Graph&, LayoutRun&)>
bool inRun(PaneProvider& dp, const Request& /*request*/) {
    return pass(*dp.m_graph, dp.layoutRun()).succeeded();
}

// All of "create", in this order. docs/pipeline.md says what each pass needs and leaves.
constexpr std::array<Step, 12> steps{{
    {"viewpoint", nullptr, readViewpoint},
    {"viewpoint", "dp->m_graph", hasGraph},
    {"data", "dp->getData(progress).succeeded()", fetchData},
    {"info_nodes", "dp->m_graph->setLinkInfoAsNodes().succeeded()", onGraph<&Graph::setLinkInfoAsNodes>},
    {"info_nodes", "dp->m_graph->setGroupInfoAsNodes().succeeded()", onGraph<&Graph::setGroupInfoAsNodes>},
    {"group_links", nullptr, onGraph<&Graph::createDummyLinksForGroups>},
    {"hierarchical_levels", "dp->m_graph->calculateHierarchicalLevels().succeeded()",
     inRun<view_model::calculateHierarchicalLevels>},
    {"label_dummies", "dp->m_graph->addDummyNodesForLabels().succeeded()",
     inRun<view_model::addDummyNodesForLabels>},
    {"interfaces", "dp->m_graph->addDummyNodesForInterfaces().succeeded()",
     onGraph<&Graph::addDummyNodesForInterfaces>},
    {"label_locations", "dp->m_graph->adjustLabelLocations().succeeded()",
     onGraph<&Graph::adjustLabelLocations>},
    {"node_alignings", nullptr, onGraph<&Graph::setNodeAlignings>},
    {"group_levels", nullptr, onGraph<&Graph::setGroupLevels>},
}};

bool endsStage(std::size_t step) {
    return step + 1 == steps.size() || std::string_view(steps[step].stage) != steps[step + 1].stage;
}

constexpr const char* signatureOfCreate =
    "static std::unique_ptr<tessera_1::DataProvider> "
    "tessera_1::DataProvider::create(basekit2::variant_bag_t&, "
    "basekit2::variant_bag_t&, basekit2::sptr_t<qlib_1::IQueryLibrary>, relay2::IMessenger*, "
    "basekit2::sptr_t<qlib_1::IInputData>, relay2::IProgress*)";

}  // namespace

const std::vector<std::string>& layoutStages() {
    static const std::vector<std::string> stages = [] {
        std::vector<std::string> names;
        for (std::size_t step = 0; step < steps.size(); ++step)
            if (endsStage(step)) names.emplace_back(steps[step].stage);
        return names;
    }();
    return stages;
}

std::unique_ptr<DataProvider> DataProvider::create(variant_bag_t& config, variant_bag_t& /*out*/,
                                                   basekit2::sptr_t<qlib_1::IQueryLibrary> queryLibrary,
                                                   relay2::IMessenger* messenger,
                                                   basekit2::sptr_t<qlib_1::IInputData> inputData,
                                                   relay2::IProgress* progress) {
    auto dp = PaneProvider::create({}, {&config, messenger, progress}, std::move(queryLibrary),
                                   std::move(inputData));
    if (!dp || !dp->isComplete()) return nullptr;
    return dp;
}

PaneProvider::PaneProvider(const LayoutOptions& options) : m_watcher(options.watcher) {
    m_run.limits = options.limits;
}

std::unique_ptr<PaneProvider> PaneProvider::create(const LayoutOptions& options, const Request& request,
                                                   basekit2::sptr_t<qlib_1::IQueryLibrary> queryLibrary,
                                                   basekit2::sptr_t<qlib_1::IInputData> inputData) {
    auto dp = std::make_unique<PaneProvider>(options);
    dp->m_queryLibrary = std::move(queryLibrary);
    dp->m_inputData = std::move(inputData);
    if (!dp->runStages(request)) return nullptr;
    return dp;
}

bool PaneProvider::isComplete() const {
    return m_nextStep == steps.size();
}

// Runs the steps that are left, up to the end or to one that is cancelled. False when a tested one fails.
bool PaneProvider::runStages(const Request& request) {
    m_run.progress = request.progress;
    m_run.isCancelled = false;
    if (m_watcher) m_stageBegin = Clock::now();
    for (; m_nextStep < steps.size(); ++m_nextStep) {
        const Step& step = steps[m_nextStep];
        const bool holds = step.run(*this, request);
        if (m_run.isCancelled) break;
        if (step.condition && !holds) {
            check::failed(TESSERA_HERE_IN(signatureOfCreate), step.condition, step.run(*this, request));
            return false;
        }
        if (endsStage(m_nextStep) && !endStage(step.stage)) m_nextStep = steps.size() - 1;
    }
    m_run.progress = nullptr;
    return true;
}

// Debug builds verify the graph. False when the watcher wants no further stage.
bool PaneProvider::endStage(const char* stage) {
    assert(verifyGraph(*m_graph, stage).empty());
    if (!m_watcher) return true;
    const std::string name = stage;
    const bool isWanted =
        m_watcher->stageEnded({name, Clock::now() - m_stageBegin, *m_graph, m_run.isTruncated});
    m_stageBegin = Clock::now();
    return isWanted;
}

error_code_t PaneProvider::getMetadata(variant_bag_t& out, relay2::IProgress* progress) {
    if (!isComplete() && !runStages({nullptr, nullptr, progress})) return error_code_t::false_code();
    if (!isComplete())
        return TESSERA_RAISE(bk2::error::Cancelled(_U("Cancelled while the diagram was laid out")));
    return DataProvider::getMetadata(out, progress);
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
    view_model::forgetUnknownMode(*m_graph);
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
        return TESSERA_RAISE(bk2::error::IsNot.Valid.Data(_U("The request's display mode is not a string")));
    m_graph->m_displayMode = getAttrAndLocalize(*mode, "", false);
    return getMetadata(out, progress);
}

}  // namespace tessera_1
