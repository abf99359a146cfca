#include "host/check/structure.h"

namespace tessera_host {
namespace {

using basekit2::variant_bag_t;

struct Section {
    const variant_bag_t* element;
    bool isGraph;
};

// Everything that is missing as a whole; a document in which nothing else is wrong may still show nothing.
void checkPresence(const variant_bag_t& viewpoint, const variant_bag_t* diagram, const variant_bag_t* graph,
                   bool hasNodes, Findings& findings) {
    if (viewpoint.is_empty())
        findings.error(viewpoint.position(), "the document is empty, so no diagram is made");
    else if (!diagram)
        findings.error(viewpoint.position(), "there is no <diagram>, so the diagram has no nodes");
    else if (!graph)
        findings.error(diagram->position(), "there is no <graph> in <diagram>, so the diagram has no nodes");
    else if (!hasNodes)
        findings.warning(graph->position(), "there is no <node> in <graph>, so the diagram has no nodes");
}

}  // namespace

Structure checkStructure(const variant_bag_t& viewpoint, Findings& findings, Watch& watch) {
    GraphSections graphs(findings, watch);
    DisplaySections displays(graphs, findings, watch);
    const variant_bag_t* firstDiagram = nullptr;
    const variant_bag_t* firstGraph = nullptr;
    std::vector<Section> sections;
    for (auto child = viewpoint.begin(); !child.at_end() && !watch.mustStop(); child.next()) {
        if (child.get_name() != "diagram") continue;
        const variant_bag_t& diagram = child.get_value();
        if (!firstDiagram) firstDiagram = &diagram;
        for (auto section = diagram.begin(); !section.at_end() && !watch.mustStop(); section.next()) {
            const bool isGraph = section.get_name() == "graph";
            if (!isGraph && section.get_name() != "display") continue;
            if (isGraph && !firstGraph) firstGraph = &section.get_value();
            if (isGraph) graphs.collect(section.get_value());
            sections.push_back({&section.get_value(), isGraph});
        }
    }
    for (const auto& [element, isGraph] : sections) {
        if (watch.mustStop()) break;
        if (isGraph)
            graphs.read(*element);
        else
            displays.read(*element);
    }
    checkPresence(viewpoint, firstDiagram, firstGraph, graphs.graph().nodes.size() > 1, findings);
    return {graphs.takeGraph(), displays.takeRowSets()};
}

}  // namespace tessera_host
