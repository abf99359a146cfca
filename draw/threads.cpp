#include "draw/threads.h"

#include <cstddef>
#include <optional>
#include <utility>

#include "draw/chains.h"
#include "draw/node_ids.h"
#include "draw/splits.h"

namespace tessera_draw {
namespace {

class ThreadMaker {
  public:
    explicit ThreadMaker(const Diagram& diagram)
        : m_diagram(diagram),
          m_splits(readSplits(diagram)),
          m_chains(findChains(diagram, m_splits)),
          m_isInserted(insertedNodes(diagram, m_splits)),
          m_isUsed(diagram.nodes.size()) {}

    Threads run() {
        for (Index i = 0; i < m_diagram.links.size(); ++i)
            if (!m_chains.isOnChain[i]) addThread(i);
        findStrays();
        return std::move(m_threads);
    }

  private:
    static std::vector<bool> insertedNodes(const Diagram& diagram, const Splits& splits) {
        std::vector<bool> inserted(diagram.nodes.size());
        for (const Split& split : splits.all)
            inserted[split.node] = true;
        return inserted;
    }

    // A node of the document may have the id of one that was put onto a link. Links end in the former.
    [[nodiscard]] Index documentNode(Index end) {
        if (end == nothing || !m_isInserted[end]) return end;
        if (!m_documentIds)
            m_documentIds.emplace(m_diagram.nodes, [this](Index i) { return !m_isInserted[i]; });
        const Index node = m_documentIds->find(m_diagram.nodes[end].id);
        return node == nothing ? end : node;
    }

    void addThread(Index first) {
        const Link& link = m_diagram.links[first];
        Thread thread;
        thread.id = link.id;
        thread.name = link.name;
        thread.from = documentNode(link.from);
        thread.link = first;
        if (first < m_splits.documentLinks) {
            addSlots(thread);
        } else {
            thread.from = link.from;
            thread.firstSlot = static_cast<std::uint32_t>(m_threads.slots.size());
            thread.direction = link.direction;
            thread.to = link.to;
        }
        for (const Index end : {thread.from, thread.to})
            if (end != nothing) m_isUsed[end] = true;
        m_threads.threads.push_back(thread);
    }

    // Follows the chain that begins with the thread's link.
    void addSlots(Thread& thread) {
        std::vector<Slot>& slots = m_threads.slots;
        thread.firstSlot = static_cast<std::uint32_t>(slots.size());
        Index last = thread.link;
        for (std::uint32_t i = 0; i < m_chains.length[thread.link]; ++i) {
            const Index at = m_chains.end[last];
            slots.push_back({at, m_diagram.nodes[at].group, m_diagram.nodes[at].level});
            m_isUsed[at] = true;
            last = m_chains.half[at];
        }
        thread.slotCount = static_cast<std::uint32_t>(slots.size()) - thread.firstSlot;
        thread.to = documentNode(m_chains.end[last]);
        thread.direction = directionOf(thread.link, last);
        exchangeLabels(thread);
    }

    // The arrow heads stayed with the pieces that have them at their end.
    [[nodiscard]] std::string_view directionOf(Index first, Index last) const {
        const std::string_view atFirst = m_diagram.links[first].direction;
        if (first == last || m_diagram.links[last].direction != "forward") return atFirst;
        return atFirst == "back" ? "both" : "forward";
    }

    // A "from" label may have been exchanged with the first slot, a "to" label with the last one. Whether it
    // was shows in the link to the later one of the two, which leads to the other since.
    void exchangeLabels(const Thread& thread) {
        const std::size_t begin = thread.firstSlot;
        const std::size_t end = m_threads.slots.size();
        for (std::size_t i = begin; i < end; ++i) {
            const Node& node = m_diagram.nodes[m_threads.slots[i].node];
            if (i > begin && isLabel(node, "from")) {
                if (leadsTo(i - 1, begin)) exchange(begin, i);
            } else if (i + 1 < end && isLabel(node, "to")) {
                if (leadsTo(end - 2, i)) exchange(i, end - 1);
                break;
            }
        }
    }

    // Whether the link from one slot leads to the node of the other.
    [[nodiscard]] bool leadsTo(std::size_t slot, std::size_t other) const {
        const Index target = m_diagram.links[m_chains.half[m_threads.slots[slot].node]].to;
        return target != nothing &&
               m_diagram.nodes[target].id == m_diagram.nodes[m_threads.slots[other].node].id;
    }

    // The two nodes have each other's groups by now, but not each other's levels.
    void exchange(std::size_t a, std::size_t b) {
        std::swap(m_threads.slots[a], m_threads.slots[b]);
        std::swap(m_threads.slots[a].level, m_threads.slots[b].level);
    }

    void findStrays() {
        for (std::size_t i = 0; i < m_diagram.nodes.size(); ++i)
            if (!m_isUsed[i] && isLabel(m_diagram.nodes[i]))
                m_threads.strays.push_back(static_cast<Index>(i));
    }

    const Diagram& m_diagram;
    const Splits m_splits;
    const Chains m_chains;
    const std::vector<bool> m_isInserted;  // by node: put onto a link
    std::optional<NodeIds> m_documentIds;  // of the others, when they are needed
    std::vector<bool> m_isUsed;            // by node: a thread passes it or ends in it
    Threads m_threads;
};

}  // namespace

Threads findThreads(const Diagram& diagram) {
    return ThreadMaker(diagram).run();
}

}  // namespace tessera_draw
