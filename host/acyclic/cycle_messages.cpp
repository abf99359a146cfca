#include "host/acyclic/cycle_messages.h"

#include <algorithm>

#include "host/check/components.h"
#include "host/document/text.h"

namespace tessera_host {
namespace {

using Index = std::size_t;
using relay2::severity_t;

constexpr std::size_t maxNamed = 8;  // links in one message

std::string nameOf(const DeclaredGraph& graph, Index link) {
    const auto& [id, from, to, position] = graph.links[link];
    std::string text = quoted(id);
    if (position.line != 0) text += " (line " + std::to_string(position.line) + ")";
    return text;
}

std::string counted(std::size_t count) {
    return count == 1 ? "the link " : std::to_string(count) + " links ";
}

// "a", "b" and "c"; of many the first ones and how many more there are.
std::string list(const DeclaredGraph& graph, const std::vector<Index>& links) {
    const std::size_t named = links.size() > maxNamed + 1 ? maxNamed : links.size();
    std::string text;
    for (std::size_t i = 0; i < named; ++i) {
        if (i > 0) text += i + 1 == links.size() ? " and " : ", ";
        text += nameOf(graph, links[i]);
    }
    if (named < links.size()) text += " and " + std::to_string(links.size() - named) + " more";
    return text;
}

// The arcs of a shortest cycle that begins with this one.
std::vector<Index> shortestCycle(const ArcGraph& arcs, Index first) {
    std::vector<Index> cameBy(arcs.nodeCount(), noIndex);
    std::vector<Index> reached{arcs[first].to};
    cameBy[arcs[first].to] = first;
    for (Index next = 0; cameBy[arcs[first].from] == noIndex; ++next)
        for (const Index arc : arcs.leaving(reached[next])) {
            if (cameBy[arcs[arc].to] != noIndex) continue;
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

std::string describeTangle(const DeclaredGraph& graph, const Tangle& tangle) {
    std::vector<Index> links;
    for (const Index arc : shortestCycle(tangle.arcs, 0))
        links.push_back(tangle.links[arc]);
    std::string text = "the links " + list(graph, links) + " go in a circle ";
    text += tangle.group == 0 ? "at the top level" : "inside group " + quoted(graph.nodes[tangle.group].id);
    const std::size_t others = tangle.links.size() - links.size();
    if (others > 0) text += ", and " + std::to_string(others) + " more in circles connected with it";
    return text + "; --acyclic turns as few of them around as it can";
}

}  // namespace

void postTangles(const DeclaredGraph& graph, const std::vector<Tangle>& tangles,
                 relay2::IMessenger& messenger) {
    for (std::size_t i = 0; i < tangles.size(); ++i) {
        if (i == maxCycleMessages) {
            messenger.post(severity_t::warning,
                           "and " + std::to_string(tangles.size() - i) +
                               " more circles of links; --acyclic helps there, too",
                           {});
            return;
        }
        messenger.post(severity_t::warning, describeTangle(graph, tangles[i]),
                       graph.links[tangles[i].links.front()].position);
    }
}

std::string describeLoop(const DeclaredGraph& graph, std::size_t link) {
    const auto& [id, from, to, position] = graph.links[link];
    const std::string text = "link " + quoted(id) + " leads from ";
    if (from == to)
        return text + quoted(graph.nodes[from].id) + " to itself; turning it around does not help";
    // The group, of the two, is read in front of what is in it.
    return text +
           (from < to ? "group " + quoted(graph.nodes[from].id) + " into itself, to "
                      : quoted(graph.nodes[from].id) + " to the group that it is in, ") +
           quoted(graph.nodes[to].id) + "; turning it around does not help";
}

void postLoops(const DeclaredGraph& graph, const std::vector<std::size_t>& loops,
               relay2::IMessenger& messenger) {
    for (std::size_t i = 0; i < loops.size(); ++i) {
        if (i == maxCycleMessages) {
            messenger.post(severity_t::warning,
                           "and " + std::to_string(loops.size() - i) +
                               " more links between a node and itself, or a group and what is in it",
                           {});
            return;
        }
        messenger.post(severity_t::warning, describeLoop(graph, loops[i]), graph.links[loops[i]].position);
    }
}

void postTurned(const DeclaredGraph& graph, const std::vector<std::size_t>& links,
                relay2::IMessenger& messenger) {
    if (links.empty()) return;
    messenger.post(severity_t::note,
                   counted(links.size()) + list(graph, links) + (links.size() == 1 ? " was" : " were") +
                       " turned around, because links went in circles",
                   {});
}

}  // namespace tessera_host
