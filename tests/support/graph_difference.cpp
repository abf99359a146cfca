#include "tests/support/graph_difference.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

#include "tests/support/model_building.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::DataTransferTable;
using tessera_1::view_model::Graph;
using tessera_1::view_model::Link;
using tessera_1::view_model::Node;

// Places in a list; -1 for none, -2 for what is not listed.
class Places {
  public:
    template <class T>
    explicit Places(const std::vector<T>& list) {
        for (std::size_t i = 0; i < list.size(); ++i)
            m_places.emplace(list[i].get(), static_cast<int>(i));
    }
    template <class T>
    int of(const T& object) const {
        if (!object) return -1;
        const auto it = m_places.find(object.get());
        return it == m_places.end() ? -2 : it->second;
    }
    template <class T>
    std::vector<int> ofAll(const std::vector<T>& objects) const {
        std::vector<int> out;
        for (const T& object : objects)
            out.push_back(of(object));
        return out;
    }

  private:
    std::unordered_map<const void*, int> m_places;
};

std::string shown(const std::string& text) {
    return "\"" + text + "\"";
}
std::string shown(std::int32_t number) {
    return std::to_string(number);
}
std::string shown(const std::vector<int>& numbers) {
    std::string out = "[";
    for (const int number : numbers)
        out += " " + std::to_string(number);
    return out + " ]";
}
std::string shown(const std::vector<std::string>& texts) {
    std::string out = "[";
    for (const std::string& text : texts)
        out += " " + shown(text);
    return out + " ]";
}

class Comparison {
  public:
    Comparison(const Graph& a, const Graph& b, bool placeholders)
        : m_a(a),
          m_b(b),
          m_placeholders(placeholders),
          m_nodesA(a.m_nodeList),
          m_nodesB(b.m_nodeList),
          m_linksA(a.m_linkList),
          m_linksB(b.m_linkList) {}

    std::string run() {
        m_subject = [] { return std::string("the graph"); };
        same("number of nodes", static_cast<int>(m_a.m_nodeList.size()),
             static_cast<int>(m_b.m_nodeList.size()));
        same("number of links", static_cast<int>(m_a.m_linkList.size()),
             static_cast<int>(m_b.m_linkList.size()));
        const std::size_t nodes = std::min(m_a.m_nodeList.size(), m_b.m_nodeList.size());
        const std::size_t links = std::min(m_a.m_linkList.size(), m_b.m_linkList.size());
        for (std::size_t i = 0; i < nodes; ++i)
            sameNode(i, *m_a.m_nodeList[i], *m_b.m_nodeList[i]);
        for (std::size_t i = 0; i < links; ++i)
            sameLink(i, *m_a.m_linkList[i], *m_b.m_linkList[i]);
        m_subject = [] { return std::string("the graph"); };
        same("groups", m_nodesA.ofAll(m_a.m_groups), m_nodesB.ofAll(m_b.m_groups));
        sameTables();
        sameLayers("the top level", nullptr, nullptr);
        for (std::size_t i = 0; i < nodes; ++i)
            sameLayers("group " + std::to_string(i), m_a.m_nodeList[i], m_b.m_nodeList[i]);
        return m_difference;
    }

  private:
    template <class T>
    void same(const char* what, const T& a, const T& b) {
        if (!m_difference.empty() || a == b) return;
        m_difference = m_subject() + ": " + what + ": " + shown(a) + " and " + shown(b);
    }

    // Names and values of what a table shows.
    static std::vector<std::string> named(const DataTransferTable& table) {
        std::vector<std::string> out;
        for (const char* mode : {"bandwidth", "ratio", "size"}) {
            if (const auto entry = table.find(mode); entry != table.end())
                out.push_back(std::string(mode) + ": " + named(entry->second));
        }
        out.push_back(std::to_string(table.size()) + " entries");
        return out;
    }
    static std::string named(const InfoPtr& info) { return info ? info->m_name : "(none)"; }
    void sameTable(const char* what, const DataTransferTable& a, const DataTransferTable& b) {
        if (!a.empty() || !b.empty()) same(what, named(a), named(b));
    }

    void sameNode(std::size_t place, const Node& a, const Node& b) {
        m_subject = [place, &a] { return "node " + std::to_string(place) + " <" + a.m_id + ">"; };
        same("id", a.m_id, b.m_id);
        same("type", a.m_type, b.m_type);
        same("group", m_nodesA.of(a.m_group), m_nodesB.of(b.m_group));
        same("level", a.m_hierarchicalLevel, b.m_hierarchicalLevel);
        same("group level", a.m_groupLevel, b.m_groupLevel);
        same("members", m_nodesA.ofAll(a.m_groupChildren), m_nodesB.ofAll(b.m_groupChildren));
        same("children", m_nodesA.ofAll(a.m_children), m_nodesB.ofAll(b.m_children));
        same("parents", m_nodesA.ofAll(a.m_parents), m_nodesB.ofAll(b.m_parents));
        same("info", named(a.m_info), named(b.m_info));
        sameTable("data transfers", a.m_dataTransfers, b.m_dataTransfers);
        same("location", a.m_location, b.m_location);
        same("aligning", a.m_aligning, b.m_aligning);
        same("display type", a.m_displayType, b.m_displayType);
    }

    void sameLink(std::size_t place, const Link& a, const Link& b) {
        m_subject = [place, &a] { return "link " + std::to_string(place) + " <" + a.m_id + ">"; };
        same("id", a.m_id, b.m_id);
        same("type", a.m_type, b.m_type);
        same("from", m_nodesA.of(a.m_from), m_nodesB.of(b.m_from));
        same("to", m_nodesA.of(a.m_to), m_nodesB.of(b.m_to));
        same("real link", m_linksA.of(a.m_realLink), m_linksB.of(b.m_realLink));
        same("dummy link", m_linksA.of(a.m_dummyLink), m_linksB.of(b.m_dummyLink));
        same("direction", a.m_direction, b.m_direction);
        sameTable("from info", a.m_displayInfo.m_fromInfo, b.m_displayInfo.m_fromInfo);
        sameTable("to info", a.m_displayInfo.m_toInfo, b.m_displayInfo.m_toInfo);
        sameTable("total info", a.m_displayInfo.m_totalInfo, b.m_displayInfo.m_totalInfo);
    }

    void sameTables() {
        const auto listed = [](const auto& table, const Places& places) {
            std::vector<int> out;
            for (const auto& [id, object] : table)
                out.push_back(places.of(object));
            return out;
        };
        same("nodes by id", listed(m_a.m_nodes, m_nodesA), listed(m_b.m_nodes, m_nodesB));
        same("links by id", listed(m_a.m_links, m_linksA), listed(m_b.m_links, m_linksB));
        const auto levels = [](const Graph& graph) {
            std::vector<int> out;
            for (const auto& [id, node] : graph.m_nodes) {
                const std::int32_t* level = graph.m_groupLevelManager.m_groupLevels.find(id);
                out.push_back(level ? *level : -1);
            }
            out.push_back(static_cast<int>(graph.m_groupLevelManager.m_groupLevels.size()));
            return out;
        };
        same("group levels", levels(m_a), levels(m_b));
    }

    // A manager that is not there is one without layers.
    void sameLayers(const std::string& name, const NodePtr& groupA, const NodePtr& groupB) {
        const auto layers = [this](const Graph& graph, const NodePtr& group, const Places& places) {
            std::vector<std::vector<int>> out;
            const auto manager = graph.m_levelManagers.find(group);
            if (manager == graph.m_levelManagers.end()) return out;
            for (const auto& layer : manager->second.m_levels) {
                out.push_back(places.ofAll(*layer));
                if (!m_placeholders) std::erase(out.back(), -1);
            }
            return out;
        };
        const auto a = layers(m_a, groupA, m_nodesA);
        const auto b = layers(m_b, groupB, m_nodesB);
        m_subject = [&name] { return name; };
        same("number of layers", static_cast<int>(a.size()), static_cast<int>(b.size()));
        for (std::size_t i = 0; i < a.size() && m_difference.empty(); ++i)
            same(("layer " + std::to_string(i)).c_str(), a[i], b[i]);
    }

    const Graph& m_a;
    const Graph& m_b;
    const bool m_placeholders;
    const Places m_nodesA;
    const Places m_nodesB;
    const Places m_linksA;
    const Places m_linksB;
    std::function<std::string()> m_subject;
    std::string m_difference;
};

}  // namespace

std::string firstDifference(const Graph& a, const Graph& b, bool placeholders) {
    return Comparison(a, b, placeholders).run();
}

}  // namespace tessera_test
