#include "core/view_model/passes/dummy_maker.h"

#include "core/view_model/truncated_id.h"

namespace tessera_1::view_model {
namespace {

// How many dummies are made between two looks at the progress: some milliseconds.
constexpr std::size_t insertsPerPoll = 16'384;

// Of the node and the link that an insertion adds: "TO_FROM_dummy" and "TO_FROM_dummy_FROM".
std::size_t newIdBytes(const Link& link) {
    constexpr std::size_t fixed = 2 * std::string_view("__dummy").size() + 1;
    return fixed + 3 * link.m_from->m_id.size() + 2 * link.m_to->m_id.size();
}

}  // namespace

DummyMaker::DummyMaker(Graph& graph, LayoutRun& run) : m_graph(graph), m_run(run) {
    if (run.limits.maxIdBytes == LayoutLimits::none) return;
    for (const auto& node : graph.m_nodeList)
        m_idBytes += node->m_id.size();
    for (const auto& link : graph.m_linkList)
        m_idBytes += link->m_id.size();
}

Graph::NodeAndLink DummyMaker::insert(const std::shared_ptr<Link>& link, const std::shared_ptr<Node>& group,
                                      std::int32_t level) {
    if (isCancelled()) return {};
    HierarchicalLevelManager& manager = managerOf(group);
    const std::size_t layersBefore = manager.m_levels.size();
    const std::size_t layersNeeded = level < 0 ? 0 : static_cast<std::size_t>(level) + 1;
    m_newLayers += layersNeeded > layersBefore ? layersNeeded - layersBefore : 0;
    if (exceedsLayers() || exceedsElements() || exceedsIdBytes(*link)) return {};
    m_idBytes += newIdBytes(*link);
    Graph::NodeAndLink made = m_graph.insertDummyNode(link);
    (void)made.first->addToGroup(group);
    (void)manager.setLevel(made.first, level, false);
    return made;
}

std::string DummyMaker::problem(const Link& link) const {
    const LayoutLimits& limits = m_run.limits;
    const std::string text =
        "Link <" + truncatedId(link.m_id) + "> does not get all of its dummy nodes: the limit is ";
    if (exceedsLayers()) return text + std::to_string(limits.maxElements) + " more layers";
    if (exceedsElements()) return text + std::to_string(limits.maxElements) + " nodes and links";
    return text + std::to_string(limits.maxIdBytes) + " bytes in the ids of its nodes and links";
}

bool DummyMaker::exceedsElements() const {
    return m_graph.m_nodeList.size() + m_graph.m_linkList.size() + 2 > m_run.limits.maxElements;
}

bool DummyMaker::exceedsIdBytes(const Link& link) const {
    return m_run.limits.maxIdBytes != LayoutLimits::none &&
           m_idBytes + newIdBytes(link) > m_run.limits.maxIdBytes;
}

// Before anything is changed, so that the pass can continue here with another request.
bool DummyMaker::isCancelled() {
    if (++m_inserts % insertsPerPoll == 0 && m_run.progress && m_run.progress->isCancelled())
        m_run.isCancelled = true;
    return m_run.isCancelled;
}

HierarchicalLevelManager& DummyMaker::managerOf(const std::shared_ptr<Node>& group) {
    if (m_manager == nullptr || m_group != group.get()) {
        m_group = group.get();
        m_manager = &m_graph.m_levelManagers[group];
    }
    return *m_manager;
}

}  // namespace tessera_1::view_model
