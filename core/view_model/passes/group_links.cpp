// A link between two groups is stood for by a "dummy" link between the two nodes that stand side by side in
// one group, so that the layers of that group respect it.
//
// Needs:  the info nodes.
// Leaves: every link between groups has one dummy link, which names it as its real link, behind all other
//         links.
// Order:  before the hierarchical levels; once.
// Fails:  never. A link with a missing end takes no part.
#include <string>

#include "core/view_model/graph.h"
#include "core/view_model/passes/nesting.h"

namespace tessera_1::view_model {

void Graph::createDummyLinksForGroups() {
    Nesting nesting;
    const auto links = m_linkList;
    for (const auto& link : links) {
        if (!link->m_from || !link->m_to || link->m_from->m_group == link->m_to->m_group) continue;
        const auto [from, to] = nesting.sideBySide(*link);
        createDummyLink(from, to, link);
    }
}

void Graph::createDummyLink(const std::shared_ptr<Node>& from, const std::shared_ptr<Node>& to,
                            const std::shared_ptr<Link>& link) {
    const std::string base = from->m_id + "_" + to->m_id + "_dummy";
    // Links never go, so the numbers that were taken the last time still are.
    std::size_t& count = m_dummyLinkCounts[base];
    std::string id = count == 0 ? base : base + std::to_string(count);
    while (findLink(id))
        id = base + std::to_string(++count);
    const auto dummy = std::make_shared<Link>(std::move(id), "dummy");
    addLink(dummy);
    dummy->m_to = to;
    dummy->m_from = from;
    dummy->m_realLink = link;
    link->m_dummyLink = dummy;
}

}  // namespace tessera_1::view_model
