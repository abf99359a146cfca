#include "draw/placement/tracks.h"

#include <algorithm>
#include <cmath>
#include <queue>

namespace tessera_draw::placing {
namespace {

constexpr double straight = 1e-3;
constexpr double cornerMargin = 6;   // no end is nearer to a corner of its box
constexpr double nearRows = 1.5;     // lines this near to each other look like one
constexpr std::size_t maxNear = 32;  // rows that are compared; only a hub has more of them so near
constexpr double leastStep =
    8;  // between ends, so that arrow heads can be told apart; half, if lines lay on each other
constexpr Index mostEnds = 64;   // at one side, beyond which they stay
constexpr double mostMoved = 3;  // when an end or a straight run of a line gives way
constexpr Index maxTracks = 24;  // at full distance; more tracks are closer together

// Assigns tracks to edges of one direction: the edge that starts lowest gets the first track, each further
// one the next track after those that it overlaps. `source` and `target` return the ends, source < target.
template <typename Source, typename Target>
Index stack(std::vector<GapEdge*>& edges, double distance, Source source, Target target) {
    std::sort(edges.begin(), edges.end(), [&](const GapEdge* a, const GapEdge* b) {
        if (source(*a) != source(*b)) return source(*a) > source(*b);
        return target(*a) != target(*b) ? target(*a) < target(*b) : a->edge < b->edge;
    });
    std::vector<double> sources;
    sources.reserve(edges.size());
    for (const GapEdge* edge : edges)
        sources.push_back(source(*edge));
    std::reverse(sources.begin(), sources.end());
    // Prefix maxima, by source from the top, of one more than the track.
    std::vector<Index> tree(edges.size() + 1, 0);
    Index count = 0;
    for (std::size_t k = 0; k < edges.size(); ++k) {
        GapEdge& edge = *edges[k];
        const auto reach = std::upper_bound(sources.begin(), sources.end(), target(edge) + distance);
        edge.track = 0;
        for (auto i = static_cast<std::size_t>(reach - sources.begin()); i > 0; i &= i - 1)
            edge.track = std::max(edge.track, tree[i]);
        for (std::size_t i = edges.size() - k; i <= edges.size(); i += i & (~i + 1))
            tree[i] = std::max(tree[i], edge.track + 1);
        count = std::max(count, edge.track + 1);
    }
    return count;
}

// The largest tracks among those that still overlap, of one direction.
class Overlapping {
  public:
    void add(const GapEdge& edge) { m_heap.emplace(edge.track, edge.lower()); }

    // One more than the largest, at this height and below.
    Index at(double height) {
        while (!m_heap.empty() && m_heap.top().second < height)
            m_heap.pop();
        return m_heap.empty() ? 0 : m_heap.top().first + 1;
    }

  private:
    std::priority_queue<std::pair<Index, double>> m_heap;
};

// Returns how many tracks both directions need together: downward edges use tracks from the left, upward ones
// from the right, and edges that overlap must not share one.
Index tracksForBoth(const std::vector<GapEdge*>& downs, const std::vector<GapEdge*>& ups, double distance) {
    std::vector<std::pair<const GapEdge*, bool>> all;
    all.reserve(downs.size() + ups.size());
    for (const GapEdge* edge : downs)
        all.emplace_back(edge, true);
    for (const GapEdge* edge : ups)
        all.emplace_back(edge, false);
    std::sort(all.begin(), all.end(), [](const auto& a, const auto& b) {
        return a.first->upper() != b.first->upper() ? a.first->upper() < b.first->upper()
                                                    : a.first->edge < b.first->edge;
    });
    Overlapping openDowns;
    Overlapping openUps;
    Index count = 0;
    for (const auto& [edge, isDown] : all) {
        const Index others = (isDown ? openUps : openDowns).at(edge->upper() - distance);
        count = std::max(count, edge->track + 1 + others);
        (isDown ? openDowns : openUps).add(*edge);
    }
    return count;
}

}  // namespace

std::vector<Bends> GapPlan::bends() {
    std::erase_if(m_edges, [](const GapEdge& edge) {
        return !edge.isLoop && std::abs(edge.from - edge.to) < straight;
    });
    std::sort(m_edges.begin(), m_edges.end(), [](const GapEdge& a, const GapEdge& b) {
        return a.upper() != b.upper() ? a.upper() < b.upper() : a.edge < b.edge;
    });
    std::vector<Bends> all;
    for (auto begin = m_edges.begin(); begin != m_edges.end();) {
        auto end = begin;
        double reach = begin->lower();
        for (; end != m_edges.end() && end->upper() < reach + m_spacing.betweenLines; ++end)
            reach = std::max(reach, end->lower());
        all.push_back({static_cast<Index>(begin - m_edges.begin()), static_cast<Index>(end - m_edges.begin()),
                       begin->upper(), reach, plan(begin, end)});
        begin = end;
    }
    return all;
}

// Whether curves of this height, in this width, are apart where they are steepest, although they run side by side.
bool GapPlan::areApart(Iterator begin, Iterator end, double height, double width) {
    constexpr double least = 4;
    constexpr double straightShare = 0.4;  // before and after the curve
    const double run = width * (1 - straightShare);
    const double distance = least * std::hypot(run, 2 * height) / run;  // of their middles
    std::vector<const GapEdge*> byFrom;
    for (auto it = begin; it != end; ++it)
        byFrom.push_back(&*it);
    std::sort(byFrom.begin(), byFrom.end(),
              [](const GapEdge* a, const GapEdge* b) { return a->from < b->from; });
    const GapEdge* lastDown = nullptr;
    const GapEdge* lastUp = nullptr;
    for (const GapEdge* edge : byFrom) {
        const GapEdge*& last = edge->from < edge->to ? lastDown : lastUp;
        const bool isBeside = last != nullptr && last->to <= edge->to;
        if (isBeside && edge->from + edge->to - last->from - last->to < 2 * distance) return false;
        last = edge;
    }
    return true;
}

// Returns the width that the edges need.
double GapPlan::plan(Iterator begin, Iterator end) {
    double maxLength = 0;
    bool isLooping = false;
    for (auto it = begin; it != end; ++it) {
        isLooping = isLooping || it->isLoop;
        maxLength = std::max(maxLength, it->lower() - it->upper());
    }
    const auto count = end - begin;
    const bool isLow = count == 1 || maxLength <= 1.5 * m_spacing.betweenLayers ||
                       (count <= 3 && maxLength <= 5 * m_spacing.betweenLayers);
    const double steepness = std::clamp((maxLength / m_spacing.betweenLayers - 2) / 6, 0.0, 1.0);
    const double width = m_spacing.betweenLayers * (1 + steepness);
    if (isLooping || !isLow || !areApart(begin, end, maxLength, width)) return assignTracks(begin, end);
    for (auto it = begin; it != end; ++it)
        m_graph.edges[it->edge].bend = Edge::Bend::curve;
    return width;
}

double GapPlan::assignTracks(Iterator begin, Iterator end) {
    std::vector<GapEdge*> loops;
    std::vector<GapEdge*> downs;
    std::vector<GapEdge*> ups;
    for (auto it = begin; it != end; ++it) {
        m_graph.edges[it->edge].bend = Edge::Bend::track;
        (it->isLoop ? loops : it->from < it->to ? downs : ups).push_back(&*it);
    }
    const auto upper = [](const GapEdge& edge) { return edge.upper(); };
    const auto lower = [](const GapEdge& edge) { return edge.lower(); };
    const double distance = m_spacing.betweenLines;
    const Index loopTracks = stack(loops, distance, upper, lower);
    (void)stack(downs, distance, upper, lower);
    (void)stack(ups, distance, upper, lower);
    const Index tracks = tracksForBoth(downs, ups, distance);
    for (GapEdge* edge : downs)
        edge->track += loopTracks;
    for (GapEdge* edge : ups)
        edge->track = loopTracks + tracks - 1 - edge->track;
    for (auto it = begin; it != end; ++it)
        it->tracks = loopTracks + tracks;
    return widthFor(loopTracks + tracks);
}

double GapPlan::widthFor(Index tracks) const {
    return m_spacing.betweenLayers + std::min(tracks - 1, maxTracks) * m_spacing.betweenLines;
}

void GapPlan::place(const Bends& bends, double x) {
    const auto begin = m_edges.begin() + bends.begin;
    const auto end = m_edges.begin() + bends.end;
    for (auto it = begin; it != end; ++it) {
        Edge& edge = m_graph.edges[it->edge];
        edge.bendBegin = x;
        edge.bendEnd = x + bends.width;
        if (edge.bend != Edge::Bend::track) continue;
        const double tracks = widthFor(it->tracks) - m_spacing.betweenLayers;
        const double pitch = it->tracks > 1 ? tracks / (it->tracks - 1) : 0;
        edge.bendBegin = edge.bendEnd = x + (bends.width - tracks) / 2 + it->track * pitch;
    }
    separateRows(begin, end);
}

// If one edge leaves its track at the y at which another one enters a track further right, the two lie on
// each other in between. One of the two ends is then moved towards its edge's other end.
void GapPlan::separateRows(Iterator begin, Iterator end) {
    std::vector<GapEdge*> byFrom;
    for (auto it = begin; it != end; ++it)
        if (!it->isLoop && m_graph.edges[it->edge].bend == Edge::Bend::track) byFrom.push_back(&*it);
    std::vector<GapEdge*> byTo = byFrom;
    std::sort(byFrom.begin(), byFrom.end(), [](const GapEdge* a, const GapEdge* b) {
        return a->from != b->from ? a->from < b->from : a->edge < b->edge;
    });
    std::sort(byTo.begin(), byTo.end(), [](const GapEdge* a, const GapEdge* b) {
        return a->to != b->to ? a->to < b->to : a->edge < b->edge;
    });
    std::size_t first = 0;
    for (GapEdge* out : byTo) {
        while (first < byFrom.size() && byFrom[first]->from < out->to - nearRows)
            ++first;
        const std::size_t last = std::min(byFrom.size(), first + maxNear);
        for (std::size_t k = first; k < last && byFrom[k]->from <= out->to + nearRows; ++k) {
            GapEdge* in = byFrom[k];
            if (trackOf(*out) >= trackOf(*in)) continue;
            // A row of columns may be packed again: what has given way does not do so twice.
            for (const double apart : {leastStep, leastStep / 2}) {
                if (giveWay(*out, false, apart))
                    out->to = m_graph.headY(m_graph.edges[out->edge]);
                else if (giveWay(*in, true, apart))
                    in->from = m_graph.tailY(m_graph.edges[in->edge]);
                else
                    continue;
                break;
            }
            break;
        }
    }
}

// Moves the edge's end towards its other end: along its box, or with the straight run that it leads to. Returns false if the
// end is fixed.
bool GapPlan::giveWay(const GapEdge& gapEdge, bool isTail, double apart) {
    const Edge& edge = m_graph.edges[gapEdge.edge];
    const Index vertex = isTail ? edge.tail : edge.head;
    const double sign = (gapEdge.from < gapEdge.to) == isTail ? 1 : -1;
    if (vertex != nothing && m_graph.isOnLine[vertex] != 0)
        return moveRun(vertex, !isTail, sign * mostMoved, apart);
    return moveEnd(gapEdge.edge, isTail, sign * std::min(mostMoved, (gapEdge.lower() - gapEdge.upper()) / 3),
                   apart);
}

// Unless the end would come too near to a corner, or nearer than `apart` to another end at the same side.
bool GapPlan::moveEnd(Index index, bool isTail, double way, double apart) {
    Edge& edge = m_graph.edges[index];
    const Index vertex = isTail ? edge.tail : edge.head;
    if (vertex >= m_graph.boxCount || (isTail ? edge.tailPort : edge.headPort) != nothing) return false;
    double& offset = isTail ? edge.tailOffset : edge.headOffset;
    const double moved = offset + way;
    const double margin = m_graph.inset[vertex] + cornerMargin;
    if (moved < margin || moved > m_graph.height[vertex] - margin) return false;
    const auto& begin = isTail ? m_graph.outBegin : m_graph.inBegin;
    const auto& edges = isTail ? m_graph.outEdges : m_graph.inEdges;
    if (begin[vertex + 1] - begin[vertex] > mostEnds) return false;
    for (Index i = begin[vertex]; i < begin[vertex + 1]; ++i) {
        const Edge& other = m_graph.edges[edges[i]];
        const bool isNear = std::abs((isTail ? other.tailOffset : other.headOffset) - moved) < apart;
        if (edges[i] != index && isNear) return false;
    }
    offset = moved;
    return true;
}

// Moves the points from this one to the next bend, to the border, or to an end that can move as far. Returns false where the
// run is fixed.
bool GapPlan::moveRun(Index vertex, bool isForwards, double way, double apart) {
    constexpr std::size_t longestRun = 64;
    const auto& begin = isForwards ? m_graph.outBegin : m_graph.inBegin;
    const auto& edges = isForwards ? m_graph.outEdges : m_graph.inEdges;
    std::vector<Index> run;
    while (true) {
        run.push_back(vertex);
        if (m_graph.isPort(vertex)) break;
        if (begin[vertex] == begin[vertex + 1] || run.size() == longestRun) return false;
        const Index next = edges[begin[vertex]];
        const Edge& edge = m_graph.edges[next];
        if (edge.bend != Edge::Bend::none) break;
        vertex = isForwards ? edge.head : edge.tail;
        if (m_graph.isOnLine[vertex] != 0) continue;
        if (!moveEnd(next, !isForwards, way, apart)) return false;
        break;
    }
    for (const Index each : run)
        m_graph.top[each] += way;
    return true;
}

}  // namespace tessera_draw::placing
