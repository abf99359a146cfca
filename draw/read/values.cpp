#include "draw/read/values.h"

#include <unordered_map>

namespace tessera_draw {
namespace {

using basekit2::variant_bag_t;

// Finds the elements of a structure by the ids of a bag's. As long as both have the same ids in the same
// order, nothing is looked up.
template <typename Element>
class Matcher {
  public:
    explicit Matcher(const std::vector<Element>& elements)
        : m_elements(elements), m_isMatched(elements.size(), 0) {}

    // The element for the next one of the bag, or `nothing`.
    [[nodiscard]] Index match(std::string_view id) {
        Index found = m_next;
        if (m_next >= m_elements.size() || m_elements[m_next].id != id) found = findById(id);
        if (found == nothing) return found;
        m_isMatched[found] = 1;
        m_next = found + 1;
        return found;
    }

    void addMissing(std::vector<std::string>& missing) const {
        for (std::size_t i = 0; i < m_elements.size(); ++i)
            if (m_isMatched[i] == 0) missing.emplace_back(m_elements[i].id);
    }

  private:
    // The first element with this id that is not matched yet. Elements before the
    // front of its queue are matched.
    Index findById(std::string_view id) {
        if (m_queues.empty()) fillQueues();
        const auto queue = m_queues.find(id);
        if (queue == m_queues.end()) return nothing;
        Index& front = queue->second;
        while (front != nothing && m_isMatched[front] != 0)
            front = m_nextOfId[front];
        return front;
    }

    void fillQueues() {
        m_nextOfId.assign(m_elements.size(), nothing);
        m_queues.reserve(m_elements.size());
        for (std::size_t i = m_elements.size(); i-- > 0;) {
            const auto [place, isNew] = m_queues.try_emplace(m_elements[i].id, nothing);
            m_nextOfId[i] = place->second;
            place->second = static_cast<Index>(i);
        }
    }

    const std::vector<Element>& m_elements;
    std::vector<char> m_isMatched;
    Index m_next = 0;
    std::unordered_map<std::string_view, Index> m_queues;  // by id: the first element; filled on demand
    std::vector<Index> m_nextOfId;
};

Info ownedInfo(const variant_bag_t& bag, std::string_view name, TextArena& texts) {
    Info info = readInfo(bag, name);
    info.name = texts.add(info.name);
    for (Row& row : info.rows)
        for (std::string_view* text :
             {&row.name, &row.value, &row.level, &row.change, &row.other, &row.difference, &row.percent})
            *text = texts.add(*text);
    return info;
}

}  // namespace

std::vector<Info> readNodeValues(const variant_bag_t& bag, const Diagram& structure) {
    std::vector<Info> values(structure.nodes.size());
    Matcher nodes(structure.nodes);
    forEachChild(bag, "nodes", "node", [&](const variant_bag_t& node) {
        const Index at = nodes.match(node.get_text("id"));
        if (at != nothing) values[at] = readInfo(node, "info");
    });
    return values;
}

Values readValues(const variant_bag_t& bag, const Diagram& structure, TextArena& texts,
                  Differences& differences) {
    Values values;
    if (const variant_bag_t* head = bag.get_variant_bag("diagram"))
        values.displayMode = texts.add(head->get_text("displayMode"));
    values.meaning = readMeaning(bag, texts);
    values.nodes.resize(structure.nodes.size());
    values.links.resize(structure.links.size());
    Matcher nodes(structure.nodes);
    forEachChild(bag, "nodes", "node", [&](const variant_bag_t& node) {
        const std::string_view id = node.get_text("id");
        const Index at = nodes.match(id);
        if (at == nothing) return void(differences.newNodes.emplace_back(id));
        values.nodes[at] = ownedInfo(node, "info", texts);
    });
    nodes.addMissing(differences.missingNodes);
    Matcher links(structure.links);
    forEachChild(bag, "links", "link", [&](const variant_bag_t& link) {
        const std::string_view id = link.get_text("id");
        const Index at = links.match(id);
        if (at == nothing) return void(differences.newLinks.emplace_back(id));
        values.links[at] = {ownedInfo(link, "fromInfo", texts), ownedInfo(link, "totalInfo", texts),
                            ownedInfo(link, "toInfo", texts)};
    });
    links.addMissing(differences.missingLinks);
    return values;
}

}  // namespace tessera_draw
