#include "core/view_model/passes/inner_splitter.h"

#include <algorithm>

namespace tessera_1::view_model {
namespace {

std::int32_t gapOf(const Link& link) {
    return link.m_to->getHierarchicalLevel() - link.m_from->getHierarchicalLevel() - 1;
}

}  // namespace

bool InnerSplitter::run() {
    if (!m_isPrepared) findLinks();
    m_isPrepared = true;
    for (; m_group < m_graph.m_groups.size(); ++m_group) {
        if (!visitGroup()) return false;
        m_next = 0;
    }
    return true;
}

// A link of which nothing can come is left out. Those with a gap need dummies; real links can change before
// they are visited.
void InnerSplitter::findLinks() {
    const auto& links = m_graph.m_linkList;
    for (const auto& link : links)
        if (link->m_type == "dummy" && link->m_realLink) m_realLinks.emplace(link->m_realLink.get(), none);
    for (Position position = 0; position < links.size(); ++position) {
        const Link& link = *links[position];
        const auto real = m_realLinks.empty() ? m_realLinks.end() : m_realLinks.find(&link);
        if (real != m_realLinks.end()) real->second = position;
        if (!link.m_from || !link.m_to || link.m_from->m_group != link.m_to->m_group) continue;
        if (real != m_realLinks.end() || gapOf(link) > 0)
            m_links[link.m_to->m_group.get()].push_back(position);
    }
}

bool InnerSplitter::visitGroup() {
    const std::shared_ptr<Node>& group = m_graph.m_groups[m_group];
    while (true) {
        for (; m_gap > 0; --m_gap) {
            if (!m_dummies.insert(m_split, group, m_link->m_to->getHierarchicalLevel() - 1).first)
                return false;
            if (m_split != m_link) visitLaterIfNeeded();
        }
        m_position = takeNext();
        if (m_position == none) return true;
        if (!begin(m_position)) m_gap = 0;
    }
}

// False when there is nothing to do for the link.
bool InnerSplitter::begin(Position position) {
    m_link = m_graph.m_linkList[position];
    if (!isInside(*m_link, m_graph.m_groups[m_group].get())) return false;
    m_split = m_link->m_type == "dummy" ? m_link->m_realLink : m_link;
    if (!m_split || !m_split->m_from || !m_split->m_to) return false;
    m_gap = gapOf(*m_link);
    return true;
}

InnerSplitter::Position InnerSplitter::takeNext() {
    const auto known = m_links.find(m_graph.m_groups[m_group].get());
    const bool hasNext = known != m_links.end() && m_next < known->second.size();
    if (!m_late.empty() && (!hasNext || *m_late.begin() < known->second[m_next]))
        return m_late.extract(m_late.begin()).value();
    return hasNext ? known->second[m_next++] : none;
}

// The real link at hand may have become one inside the group.
void InnerSplitter::visitLaterIfNeeded() {
    const Node* group = m_graph.m_groups[m_group].get();
    const Position position = m_realLinks.at(m_split.get());
    if (position == none || position <= m_position || !isInside(*m_split, group)) return;
    const auto known = m_links.find(group);
    if (known == m_links.end() || !std::binary_search(known->second.begin(), known->second.end(), position))
        m_late.insert(position);
}

bool InnerSplitter::isInside(const Link& link, const Node* group) {
    return link.m_from && link.m_to && link.m_from->m_group.get() == group &&
           link.m_to->m_group.get() == group;
}

}  // namespace tessera_1::view_model
