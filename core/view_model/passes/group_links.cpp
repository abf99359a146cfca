// A link between two groups is represented by a "dummy" link between two members of one group: the ends, or
// the groups that hold them. So the layers of that group respect it.
//
// Needs:  the info nodes.
// Leaves: every link between groups has one dummy link, which names it as its real link. The dummy links come
//         after all other links.
// Order:  before the hierarchical levels; once.
// Fails:  never. A link with a missing end takes no part.
#include <string>
#include <unordered_map>

#include "core/view_model/graph.h"
#include "core/view_model/passes/nesting.h"

namespace tessera_1::view_model {
namespace {

// How often an id has been made, by the id without number. Links are never removed, so numbers that were
// taken once stay taken.
using DummyLinkCounts = std::unordered_map<std::string, std::size_t>;

void addDummyLink(Graph& graph, const std::shared_ptr<Node>& from, const std::shared_ptr<Node>& to,
                  const std::shared_ptr<Link>& link, DummyLinkCounts& counts) {
    const std::string base = from->m_id + "_" + to->m_id + "_dummy";
    std::size_t& count = counts[base];
    std::string id = count == 0 ? base : base + std::to_string(count);
    while (graph.m_links.contains(id))
        id = base + std::to_string(++count);
    const auto dummy = std::make_shared<Link>(std::move(id), "dummy");
    graph.addLink(dummy);
    dummy->m_to = to;
    dummy->m_from = from;
    dummy->m_realLink = link;
    link->m_dummyLink = dummy;
}

}  // namespace

void Graph::createDummyLinksForGroups() {
    Nesting nesting;
    DummyLinkCounts counts;
    const std::size_t count = m_linkList.size();  // those added here are not visited
    for (std::size_t i = 0; i < count; ++i) {
        const std::shared_ptr<Link> link = m_linkList[i];
        if (!link->m_from || !link->m_to || link->m_from->m_group == link->m_to->m_group) continue;
        const auto [from, to] = nesting.liftedToCommonGroup(*link);
        addDummyLink(*this, from, to, link, counts);
    }
}

void Graph::createDummyLink(const std::shared_ptr<Node>& from, const std::shared_ptr<Node>& to,
                            const std::shared_ptr<Link>& link) {
    DummyLinkCounts counts;
    addDummyLink(*this, from, to, link, counts);
}

}  // namespace tessera_1::view_model
