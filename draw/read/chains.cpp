#include "draw/read/chains.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <utility>

namespace tessera_draw {
namespace {

using Ends = std::uint64_t;

Ends endsOf(Index from, Index to) {
    return std::uint64_t{from} << 32U | to;
}

// Links by their ends, those of equal ends in the order in which they came.
class WaitingLinks {
  public:
    struct Queue {
        Index first = nothing;
        Index last = nothing;
    };

    explicit WaitingLinks(std::size_t linkCount) : m_places(linkCount) {}

    // REQUIRES: the link is in no queue, and the queue is not moved while the link is in it.
    void add(Queue& queue, Index link) {
        m_places[link] = {&queue, queue.last, nothing};
        (queue.last == nothing ? queue.first : m_places[queue.last].next) = link;
        queue.last = link;
    }

    void remove(Index link) {
        const Place place = std::exchange(m_places[link], Place());
        if (place.queue == nullptr) return;
        (place.previous == nothing ? place.queue->first : m_places[place.previous].next) = place.next;
        (place.next == nothing ? place.queue->last : m_places[place.next].previous) = place.previous;
    }

    Index take(Queue& queue) {
        const Index link = queue.first;
        if (link != nothing) remove(link);
        return link;
    }

  private:
    struct Place {
        Queue* queue = nullptr;
        Index previous = nothing;
        Index next = nothing;
    };

    std::vector<Place> m_places;  // by link
};

// Inserted nodes of parallel links can have the same id. Ends are therefore compared by class: the node that
// is found for their id. Which of several links was split follows from the order in which the layout
// processes them, and from where each link leads now: one that leads where it did at first was not split.
class ChainFinder {
  public:
    ChainFinder(const Diagram& diagram, const Splits& splits)
        : m_diagram(diagram),
          m_splits(splits.all),
          m_documentLinks(splits.documentLinks),
          m_classes(splits.classes),
          m_waiting(diagram.links.size()) {
        m_origins.reserve(m_splits.size());
        m_candidates.reserve(m_splits.size());
        m_chains.end.resize(diagram.links.size(), nothing);
        m_chains.half.resize(diagram.nodes.size(), nothing);
        m_chains.isOnChain.resize(diagram.links.size());
        m_chains.length.resize(m_documentLinks);
        for (Index i = 0; i < diagram.links.size(); ++i)
            m_parts.push_back({diagram.links[i].from, i});
    }

    Chains run() {
        traceSplits();
        setFirstEnds();
        splitLabelledLinks();
        splitLongLinks();
        return std::move(m_chains);
    }

  private:
    // Where a link of the document led at first.
    struct Origin {
        Index to = nothing;
        bool hasLabels = false;
    };
    struct LinkPart {
        Index from = nothing;   // the class of the node it begins at
        Index whole = nothing;  // the link of the document that it is a part of
    };
    struct Candidates {
        WaitingLinks::Queue likely;  // lead elsewhere now, so they were split
        WaitingLinks::Queue others;
    };

    [[nodiscard]] Index classOf(Index node) const { return node == nothing ? nothing : m_classes[node]; }
    [[nodiscard]] const Node& nodeOf(const Split& split) const { return m_diagram.nodes[split.node]; }

    // Computes what a link was at first if it now leads from `from` to the node of a split.
    void traceSplits() {
        for (const Split& split : m_splits) {
            Origin origin{split.to, isLabel(nodeOf(split))};
            if (const auto before = m_origins.find(endsOf(split.from, split.to)); before != m_origins.end()) {
                origin.to = before->second.to;
                origin.hasLabels = origin.hasLabels || before->second.hasLabels;
            }
            m_origins.insert_or_assign(endsOf(split.from, classOf(split.node)), origin);
        }
    }

    void setFirstEnds() {
        for (Index i = 0; i < m_documentLinks; ++i) {
            const Link& link = m_diagram.links[i];
            m_chains.end[i] = link.to;
            if (link.direction == "forward" || link.direction == "both")
                continue;  // not split: a split removes these directions
            const auto origin = m_origins.find(endsOf(link.from, link.to));
            if (origin == m_origins.end()) continue;
            if (origin->second.hasLabels)
                m_waiting.add(m_labelled[endsOf(link.from, origin->second.to)], i);
            else
                m_chains.end[i] = origin->second.to;
        }
    }

    // Whether split `i` was made right after the one before it on the same link of the document.
    [[nodiscard]] bool continues(std::size_t i) const {
        return i < m_splits.size() && m_splits[i].from == m_splits[i - 1].from &&
               m_splits[i].to == classOf(m_splits[i - 1].node);
    }

    // The end of the splits for the values of one link, which begin at `begin`: "to" label, "center" label,
    // "from" label, with a dummy for the one of "to" and "from" that is missing, or a "center" label alone.
    [[nodiscard]] std::size_t endOfLabels(std::size_t begin) const {
        const Node& first = nodeOf(m_splits[begin]);
        const auto isBetween = [&](std::size_t i) {
            return continues(i) && isLabel(nodeOf(m_splits[i])) && !isLabel(nodeOf(m_splits[i]), "from") &&
                   !isLabel(nodeOf(m_splits[i]), "to");
        };
        const auto isLast = [&](std::size_t i) {
            return continues(i) && (isLabel(nodeOf(m_splits[i]), "from") ||
                                    (isDummy(nodeOf(m_splits[i])) && !isDummy(first)));
        };
        std::size_t end = begin + 1;
        if (!isLabel(first, "to") && !isDummy(first)) return end;
        if (isBetween(end)) ++end;
        return isLast(end) ? end + 1 : end;
    }

    // The first splits, which put labels onto links.
    void splitLabelledLinks() {
        std::size_t labelsEnd = m_splits.size();
        while (labelsEnd > 0 && !isLabel(nodeOf(m_splits[labelsEnd - 1])))
            --labelsEnd;
        while (m_labelsEnd < labelsEnd) {
            std::size_t& at = m_labelsEnd;
            const std::size_t end = endOfLabels(at);
            const Split& first = m_splits[at];
            const Index link = m_waiting.take(m_labelled[endsOf(first.from, first.to)]);
            if (link != nothing) m_chains.end[link] = first.to;
            for (; at < end; ++at)
                if (link != nothing) apply(m_splits[at], link);
        }
    }

    void apply(const Split& split, Index link) {
        m_chains.end[split.half] = m_chains.end[link];
        m_chains.end[link] = split.node;
        m_chains.half[split.node] = split.half;
        m_chains.isOnChain[split.half] = true;
        m_parts[split.half] = {classOf(split.node), m_parts[link].whole};
        ++m_chains.length[m_parts[link].whole];
    }

    void splitLongLinks() {
        for (std::size_t i = m_labelsEnd; i < m_splits.size(); ++i)
            m_candidates[endsOf(m_splits[i].from, m_splits[i].to)];
        for (Index i = 0; i < m_diagram.links.size(); ++i) {
            m_waiting.remove(i);  // a labelled link whose labels are missing
            if (i < m_documentLinks || m_chains.isOnChain[i]) wait(i);
        }
        for (std::size_t i = m_labelsEnd; i < m_splits.size(); ++i) {
            const Index link = linkOf(i);
            if (link == nothing) continue;
            m_waiting.remove(link);
            apply(m_splits[i], link);
            wait(link);
            wait(m_splits[i].half);
        }
    }

    // The link that split `i` was made on.
    Index linkOf(std::size_t i) {
        const auto found = m_candidates.find(endsOf(m_splits[i].from, m_splits[i].to));
        if (found == m_candidates.end()) return nothing;
        if (isClimbing(i)) return m_splits[i - 1].half;
        const Candidates& candidates = found->second;
        return candidates.likely.first != nothing ? candidates.likely.first : candidates.others.first;
    }

    // Whether split `i` continues a climb out of a group, which splits the last half again, layer by layer.
    // Other links of the same ends may wait from before it.
    [[nodiscard]] bool isClimbing(std::size_t i) const {
        if (i <= m_labelsEnd) return false;
        const Index half = m_splits[i - 1].half;
        if (!m_chains.isOnChain[half] || !isWhere(half, m_splits[i]) || !mayBeSplit(half)) return false;
        const Node& last = nodeOf(m_splits[i - 1]);
        const Node& next = nodeOf(m_splits[i]);
        const std::int64_t layers = std::int64_t{next.level} - last.level;
        return next.group == last.group && (layers == 1 || layers == -1);
    }

    [[nodiscard]] bool isWhere(Index link, const Split& split) const {
        return m_parts[link].from == split.from && classOf(m_chains.end[link]) == split.to;
    }

    // An exchange can make a link lead to its first "from" label again after it was split.
    [[nodiscard]] bool mayBeSplit(Index link) const {
        const Index end = m_chains.end[link];
        if (classOf(end) != m_diagram.links[link].to) return true;
        return link < m_documentLinks && end != nothing && isLabel(m_diagram.nodes[end], "from");
    }

    void wait(Index link) {
        const auto found = m_candidates.find(endsOf(m_parts[link].from, classOf(m_chains.end[link])));
        if (found == m_candidates.end()) return;
        m_waiting.add(mayBeSplit(link) ? found->second.likely : found->second.others, link);
    }

    const Diagram& m_diagram;
    const std::vector<Split>& m_splits;
    const std::size_t m_documentLinks;
    const std::vector<Index>& m_classes;  // by node
    WaitingLinks m_waiting;
    std::unordered_map<Ends, Origin> m_origins;                // by the classes of from node and split's node
    std::unordered_map<Ends, WaitingLinks::Queue> m_labelled;  // links with labels, by their first ends
    std::unordered_map<Ends, Candidates> m_candidates;         // for the splits of long links
    std::size_t m_labelsEnd = 0;    // the first of the splits that were made for layers
    std::vector<LinkPart> m_parts;  // by link
    Chains m_chains;
};

}  // namespace

Chains findChains(const Diagram& diagram, const Splits& splits) {
    return ChainFinder(diagram, splits).run();
}

}  // namespace tessera_draw
