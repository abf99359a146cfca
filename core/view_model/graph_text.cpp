// The graph as text for people.
#include <ostream>
#include <string>

#include "core/layout_watch.h"
#include "core/view_model/graph.h"

namespace tessera_1 {
namespace {

using view_model::Graph;
using view_model::Link;
using view_model::Node;

std::string quoted(const std::string& text) {
    static constexpr const char* digits = "0123456789abcdef";
    std::string out = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\')
            out += {'\\', c};
        else if (c == '\n')
            out += "\\n";
        else if (byte < 0x20 || byte == 0x7f)
            out += {'\\', 'x', digits[byte / 16], digits[byte % 16]};
        else
            out += c;
    }
    return out + '"';
}

template <class Object>
std::string idOf(const std::shared_ptr<Object>& object) {
    return object ? quoted(object->m_id) : "-";
}

void write(std::ostream& out, const Graph& graph, const Node& node) {
    std::int32_t depth = node.m_groupLevel;  // filled when the diagram is written
    (void)graph.m_groupLevelManager.getGroupLevel(node.m_id, depth);
    out << "  " << idOf(node.m_group) << " / " << quoted(node.m_id) << ' ' << quoted(node.m_type) << " level "
        << node.m_hierarchicalLevel << " depth " << depth;
    if (node.isGroup()) out << " members " << node.m_groupChildren.size();
    if (!node.m_location.empty()) out << " location " << quoted(node.m_location);
    if (node.m_aligning != "none") out << " aligning " << quoted(node.m_aligning);
    if (node.m_displayType != "none") out << " display " << quoted(node.m_displayType);
    if (node.m_info)
        for (const auto& row : node.m_info->m_rowSet.rows)
            out << " value " << quoted(row.m_value);
    out << '\n';
}

void write(std::ostream& out, const Graph& graph, const Link& link) {
    out << "  " << quoted(link.m_id) << ' ' << quoted(link.m_type) << ": " << idOf(link.m_from) << " -> "
        << idOf(link.m_to) << ' ' << quoted(link.m_direction);
    if (link.m_realLink) out << " for " << idOf(link.m_realLink);
    if (link.m_dummyLink) out << " with " << idOf(link.m_dummyLink);
    const auto transfers = [&](const char* name, const view_model::DataTransferTable& table) {
        const auto shown = table.find(graph.m_displayMode);
        if (shown == table.end() || !shown->second) return;
        for (const auto& row : shown->second->m_rowSet.rows)
            out << ' ' << name << ' ' << quoted(row.m_value);
    };
    transfers("from", link.m_displayInfo.m_fromInfo);
    transfers("total", link.m_displayInfo.m_totalInfo);
    transfers("to", link.m_displayInfo.m_toInfo);
    out << '\n';
}

void writeLayers(std::ostream& out, const Graph& graph) {
    for (const auto& group : graph.m_groups) {
        const auto manager = graph.m_levelManagers.find(group);
        if (manager == graph.m_levelManagers.end()) continue;
        out << "layers of " << idOf(group) << ": " << manager->second.m_levels.size() << '\n';
        std::size_t number = 0;
        for (const auto& layer : manager->second.m_levels) {
            out << "  " << number++ << ':';
            for (const auto& node : *layer)
                out << ' ' << idOf(node);
            out << '\n';
        }
    }
}

}  // namespace

void writeGraphText(const Graph& graph, std::ostream& out) {
    out << "graph " << quoted(graph.m_id) << " mode " << quoted(graph.m_displayMode) << '\n';
    out << "nodes: " << graph.m_nodeList.size() << '\n';
    for (const auto& node : graph.m_nodeList)
        write(out, graph, *node);
    out << "links: " << graph.m_linkList.size() << '\n';
    for (const auto& link : graph.m_linkList)
        write(out, graph, *link);
    writeLayers(out, graph);
}

}  // namespace tessera_1
