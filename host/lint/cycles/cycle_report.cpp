#include "host/lint/cycles/cycle_report.h"

#include <algorithm>
#include <string>

#include "host/document/text.h"

namespace tessera_host {
namespace {

using relay2::severity_t;
using tessera_support::CancelToken;
using Index = std::size_t;

constexpr std::size_t maxNamed = 8;  // links, and nodes, in one message

// "a" (line 1), "b" (line 2) and "c" (line 3); of many the first ones and how many more there are.
std::string listOf(const DocumentStructure& structure, const std::vector<Index>& links) {
    const std::size_t named = links.size() > maxNamed + 1 ? maxNamed : links.size();
    std::string text;
    for (std::size_t i = 0; i < named; ++i) {
        if (i > 0) text += i + 1 == links.size() ? " and " : ", ";
        const auto& link = structure.links()[links[i]];
        text += quoted(link.id);
        if (const auto line = link.element->position().line; line != 0)
            text += " (line " + std::to_string(line) + ")";
    }
    if (named < links.size()) text += " and " + std::to_string(links.size() - named) + " more";
    return text;
}

// The arcs of a shortest cycle that begins with this one.
std::vector<Index> shortestCycle(const ArcGraph& arcs, Index first) {
    constexpr Index none = DocumentStructure::none;
    std::vector<Index> cameBy(arcs.nodeCount(), none);
    std::vector<Index> reached{arcs[first].to};
    cameBy[arcs[first].to] = first;
    for (Index next = 0; cameBy[arcs[first].from] == none; ++next)
        for (const Index arc : arcs.leaving(reached[next])) {
            if (cameBy[arcs[arc].to] != none) continue;
            cameBy[arcs[arc].to] = arc;
            reached.push_back(arcs[arc].to);
        }
    std::vector<Index> cycle;
    for (Index arc = cameBy[arcs[first].from]; arc != first; arc = cameBy[arcs[arc].from])
        cycle.push_back(arc);
    cycle.push_back(first);
    std::reverse(cycle.begin(), cycle.end());
    return cycle;
}

// An id between arrows, without quotation marks where it cannot be confused with them.
std::string step(std::string_view id) {
    const std::string text = oneLine(id);
    return text.empty() || text.find_first_of(" \"") != std::string::npos ? quoted(id) : text;
}

// "a -> b -> c -> a".
std::string pathThrough(const DocumentStructure& structure, const std::vector<Index>& nodes) {
    std::string text = step(structure.nodes()[nodes.front()].id);
    for (std::size_t i = 1; i <= nodes.size(); ++i) {
        if (nodes.size() > maxNamed && i == maxNamed) {
            text += " -> (" + std::to_string(nodes.size() - maxNamed) + " more)";
            i = nodes.size();
        }
        text += " -> " + step(structure.nodes()[nodes[i % nodes.size()]].id);
    }
    return text;
}

std::string cycleIn(const DocumentStructure& structure, Index group) {
    if (group == DocumentStructure::topLevel) return "a cycle at the top level: ";
    return "a cycle inside group " + quoted(structure.nodes()[group].id) + ": ";
}

std::string moreOf(Index count, const char* what) {
    return std::to_string(count) + " more " + what + (count == 1 ? "" : "s");
}

// What the cycle leaves out of its component.
std::string describeRest(Index nodes, Index links) {
    if (links == 0) return {};  // further nodes would have links
    return "; cycles connected with it hold " + (nodes == 0 ? "" : moreOf(nodes, "node") + " and ") +
           moreOf(links, "link");
}

std::string describeEffect(const DocumentStructure& structure, Index origin) {
    if (origin == DocumentStructure::none)
        return "; no node without incoming links leads to it, so its nodes get no layer";
    return "; " + quoted(structure.nodes()[origin].id) +
           ", which has no incoming links, leads to it, so the layering stops there";
}

std::string describeComponent(const DocumentStructure& structure, const CyclicComponent& component) {
    std::vector<Index> links;
    std::vector<Index> nodes;
    for (const Index arc : shortestCycle(component.arcs, 0)) {
        links.push_back(component.links[arc]);
        nodes.push_back(component.nodes[component.arcs[arc].from]);
    }
    return "links " + listOf(structure, links) + " form " + cycleIn(structure, component.group) +
           pathThrough(structure, nodes) +
           describeRest(component.nodes.size() - nodes.size(), component.links.size() - links.size());
}

std::string describeLoop(const DocumentStructure& structure, const LoopLink& loop) {
    const auto& [element, id, from, to, replacedBy] = structure.links()[loop.link];
    const std::string fromId = quoted(structure.nodes()[from].id);
    const std::string toId = quoted(structure.nodes()[to].id);
    std::string ends = fromId + " to itself";
    // A group stands before what is inside it.
    if (from != to)
        ends = from < to ? "group " + fromId + " to " + toId + " inside it"
                         : fromId + " to group " + toId + " around it";
    return "link " + quoted(id) + " from " + ends + " forms " +
           cycleIn(structure, structure.nodes()[loop.node].parent) + pathThrough(structure, {loop.node});
}

constexpr severity_t severityOf(CycleReport report) {
    return report == CycleReport::check ? severity_t::error : severity_t::warning;
}

// Whether `problems` holds as many as the report may have; the number of the others is the last one then.
bool endsWith(std::vector<Problem>& problems, CycleReport report, std::size_t done, std::size_t all,
              const std::string& others) {
    if (report != CycleReport::drawing || done < maxCycleMessages) return false;
    problems.push_back({{}, "and " + std::to_string(all - done) + others, severityOf(report)});
    return true;
}

}  // namespace

std::vector<Problem> reportLoops(const DocumentStructure& structure, const CyclicLinks& cyclic,
                                 CycleReport report) {
    std::vector<LoopLink> loops = cyclic.loops;
    // Drawings have nothing against links between a group and what is inside it.
    if (report == CycleReport::drawing)
        std::erase_if(loops, [&](const LoopLink& loop) {
            return structure.links()[loop.link].from != structure.links()[loop.link].to;
        });
    std::vector<Problem> problems;
    for (std::size_t i = 0; i < loops.size(); ++i) {
        if (endsWith(problems, report, i, loops.size(), " more links between a node and itself")) break;
        const LoopLink& loop = loops[i];
        problems.push_back({structure.links()[loop.link].element->position(),
                            describeLoop(structure, loop) + (report == CycleReport::check
                                                                 ? describeEffect(structure, loop.origin)
                                                                 : "; reversing the link does not help"),
                            severityOf(report)});
    }
    return problems;
}

std::vector<Problem> reportCycles(const DocumentStructure& structure, const CyclicLinks& cyclic,
                                  CycleReport report, const CancelToken& token) {
    std::vector<Problem> problems;
    const auto& components = cyclic.components;
    for (std::size_t i = 0; i < components.size() && !token.isCancelled(); ++i) {
        if (endsWith(problems, report, i, components.size(),
                     " more cycles of links; --acyclic helps there, too"))
            break;
        problems.push_back({structure.links()[components[i].links.front()].element->position(),
                            describeComponent(structure, components[i]) +
                                (report == CycleReport::check
                                     ? describeEffect(structure, components[i].origin)
                                     : "; pictures follow the links anyway; for the levels in the data, "
                                       "--acyclic reverses as few links as possible"),
                            severityOf(report)});
    }
    const std::vector<Problem> loops = reportLoops(structure, cyclic, report);
    problems.insert(problems.end(), loops.begin(), loops.end());
    return problems;
}

Problem reportReversed(const DocumentStructure& structure, const std::vector<std::size_t>& links) {
    const std::string subject = links.size() == 1 ? "link " : std::to_string(links.size()) + " links ";
    return {{},
            subject + listOf(structure, links) + (links.size() == 1 ? " was" : " were") +
                " reversed, because links formed cycles",
            severity_t::note};
}

}  // namespace tessera_host
