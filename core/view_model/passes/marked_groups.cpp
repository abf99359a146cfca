#include "core/view_model/passes/marked_groups.h"

#include <algorithm>
#include <cstddef>

namespace tessera_1::view_model {

MarkedGroups::MarkedGroups(const Graph& graph) {
    std::unordered_map<const Node*, std::vector<const Node*>> inside;
    m_numbers.emplace(nullptr, 0);
    const Node* last = nullptr;  // neighbours in a list are often in one group
    const auto add = [&](const std::shared_ptr<Node>& node) {
        const Node* group = node ? node->m_group.get() : nullptr;
        if (group == last) return;
        last = group;
        for (; m_numbers.emplace(group, 0).second; group = group->m_group.get())
            inside[group->m_group.get()].push_back(group);
    };
    for (const auto& node : graph.m_nodeList)
        add(node);
    for (const auto& link : graph.m_linkList) {
        add(link->m_from);
        add(link->m_to);
        if (!link->m_dummyLink) continue;
        add(link->m_dummyLink->m_from);
        add(link->m_dummyLink->m_to);
    }
    std::vector<const Node*> open = inside[nullptr];
    while (!open.empty()) {
        const Node* group = open.back();
        open.pop_back();
        m_groups.push_back(group);
        m_numbers[group] = static_cast<Number>(m_groups.size());
        const auto& children = inside[group];
        open.insert(open.end(), children.begin(), children.end());
    }
    const std::size_t size = m_numbers.size();
    m_ends.resize(size);
    m_ends[0] = static_cast<Number>(size);
    for (std::size_t number = size - 1; number > 0; --number) {  // what is inside comes before what is around
        m_ends[number] = std::max(m_ends[number], static_cast<Number>(number + 1));
        Number& endAround = m_ends[m_numbers.at(m_groups[number - 1]->m_group.get())];
        endAround = std::max(endAround, m_ends[number]);
    }
    m_ranges.resize(2 * size);
}

void MarkedGroups::mark(const Node* group) {
    const Number number = m_numbers.at(group);
    std::size_t begin = number + m_numbers.size();
    std::size_t end = m_ends[number] + m_numbers.size();
    for (; begin < end; begin /= 2, end /= 2) {
        if (begin % 2 == 1) {
            m_ranges[begin] = std::max(m_ranges[begin], number);
            ++begin;
        }
        if (end % 2 == 1) {
            --end;
            m_ranges[end] = std::max(m_ranges[end], number);
        }
    }
}

const Node* MarkedGroups::innermostMarked(const Node* group) const {
    Number found = 0;
    for (std::size_t at = m_numbers.at(group) + m_numbers.size(); at > 0; at /= 2)
        found = std::max(found, m_ranges[at]);
    return found == 0 ? nullptr : m_groups[found - 1];
}

bool MarkedGroups::contains(const Node* outer, const Node* inner) const {
    const Number number = m_numbers.at(outer);
    const Number other = m_numbers.at(inner);
    return number <= other && other < m_ends[number];
}

}  // namespace tessera_1::view_model
