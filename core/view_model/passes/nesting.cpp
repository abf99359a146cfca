#include "core/view_model/passes/nesting.h"

#include <vector>

namespace tessera_1::view_model {
namespace {

const Node* groupOf(const Node* node) {
    return node->m_group.get();
}

}  // namespace

Nesting::Nesting() {
    m_entries.emplace(nullptr, Entry{0, nullptr});
}

const Nesting::Entry& Nesting::entryOf(const Node* group) {
    std::vector<const Node*> unknown;
    for (const Node* at = group; !m_entries.contains(at); at = groupOf(at))
        unknown.push_back(at);
    for (; !unknown.empty(); unknown.pop_back())
        add(unknown.back());
    return m_entries.at(group);
}

// The jumps of a skew-binary counter: two of one length make a longer one.
// REQUIRES: the group's own group is known.
void Nesting::add(const Node* group) {
    const Node* parent = groupOf(group);
    const Entry& above = m_entries.at(parent);
    const Entry& there = m_entries.at(above.jump);
    const bool joins =
        above.depth > 0 && above.depth - there.depth == there.depth - m_entries.at(there.jump).depth;
    m_entries.emplace(group, Entry{above.depth + 1, joins ? there.jump : parent});
}

// The group `depth` levels below the top among the group and those that contain it.
const Node* Nesting::lift(const Node* group, std::size_t depth) const {
    while (true) {
        const Entry& entry = m_entries.at(group);
        if (entry.depth <= depth) return group;
        group = m_entries.at(entry.jump).depth >= depth ? entry.jump : groupOf(group);
    }
}

const Node* Nesting::innermostCommon(const Node* a, const Node* b) {
    const std::size_t depthOfA = entryOf(a).depth;
    a = lift(a, entryOf(b).depth);
    b = lift(b, depthOfA);
    while (a != b) {
        const Node* jumpA = m_entries.at(a).jump;
        const Node* jumpB = m_entries.at(b).jump;
        const bool isTooFar = jumpA == jumpB;
        a = isTooFar ? groupOf(a) : jumpA;
        b = isTooFar ? groupOf(b) : jumpB;
    }
    return a;
}

std::shared_ptr<Node> Nesting::childTowards(const Node* group, const std::shared_ptr<Node>& node) const {
    if (node->m_group.get() == group) return node;
    const Node* child = lift(node->m_group.get(), m_entries.at(group).depth + 1);
    return std::const_pointer_cast<Node>(child->shared_from_this());
}

std::pair<std::shared_ptr<Node>, std::shared_ptr<Node>> Nesting::sideBySide(const Link& link) {
    const Node* common = innermostCommon(link.m_from->m_group.get(), link.m_to->m_group.get());
    return {childTowards(common, link.m_from), childTowards(common, link.m_to)};
}

}  // namespace tessera_1::view_model
