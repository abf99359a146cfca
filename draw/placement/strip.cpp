#include "draw/placement/strip.h"

#include <algorithm>

namespace tessera_draw::placing {
namespace {

double distance(const Net& net, Index a, Index b, const Spacing& spacing) {
    const bool isPointA = a >= net.boxCount;
    const bool isPointB = b >= net.boxCount;
    if (isPointA || isPointB) return spacing.betweenLines;
    if (net.isOnLine[a] != 0 && net.isOnLine[b] != 0) return spacing.betweenBoxes / 2;
    return spacing.betweenBoxes;
}

double weightOf(bool isOnLineA, bool isOnLineB) {
    if (isOnLineA && isOnLineB) return 8;
    return isOnLineA || isOnLineB ? 2 : 1;
}

class StripFiller {
  public:
    StripFiller(Strip& strip, const Net& net, Index container)
        : m_strip(strip),
          m_net(net),
          m_begin(net.layerBegin[net.firstLayer[container]]),
          m_shift(strip.size()) {}

    void addTies(Index vertex) {
        const auto inBegin = static_cast<std::ptrdiff_t>(m_strip.in.size());
        const auto outBegin = static_cast<std::ptrdiff_t>(m_strip.out.size());
        for (Index k = m_net.inBegin[vertex]; k < m_net.inBegin[vertex + 1]; ++k) {
            const Edge& edge = m_net.edges[m_net.inEdges[k]];
            m_strip.in.push_back(tie(edge.tail, vertex, edge.headOffset, edge.tailOffset));
        }
        for (Index k = m_net.outBegin[vertex]; k < m_net.outBegin[vertex + 1]; ++k) {
            const Edge& edge = m_net.edges[m_net.outEdges[k]];
            m_strip.out.push_back(tie(edge.head, vertex, edge.tailOffset, edge.headOffset));
        }
        const auto fromTop = [](const Tie& a, const Tie& b) {
            if (a.other != b.other) return a.other < b.other;
            return a.otherOffset != b.otherOffset ? a.otherOffset < b.otherOffset : a.ownOffset < b.ownOffset;
        };
        std::sort(m_strip.in.begin() + inBegin, m_strip.in.end(), fromTop);
        std::sort(m_strip.out.begin() + outBegin, m_strip.out.end(), fromTop);
    }

  private:
    [[nodiscard]] Tie tie(Index other, Index own, double ownOffset, double otherOffset) const {
        const bool isOtherOnLine = m_net.isOnLine[other] != 0;
        const bool isOwnOnLine = m_net.isOnLine[own] != 0;
        Tie tie;
        tie.other = m_shift + m_net.layerBegin[m_net.layer[other]] + m_net.place[other] - m_begin;
        tie.ownOffset = ownOffset;
        tie.otherOffset = otherOffset;
        tie.weight = weightOf(isOwnOnLine, isOtherOnLine);
        tie.isInner = isOwnOnLine && isOtherOnLine;
        return tie;
    }

    Strip& m_strip;
    const Net& m_net;
    Index m_begin;
    Index m_shift;
};

void addHeader(Strip& strip, double height, const Spacing& spacing) {
    strip.vertex.push_back(nothing);
    strip.height.push_back(height);
    strip.gapBelow.push_back(spacing.betweenLines);
    strip.isFirst.push_back(1);
    strip.isLast.push_back(0);
    strip.isOnLine.push_back(0);
    strip.inBegin.push_back(0);
    strip.outBegin.push_back(0);
}

}  // namespace

void fillStrip(Strip& strip, const Net& net, Index container, double header, const Spacing& spacing) {
    strip = {};
    if (header > 0) addHeader(strip, header, spacing);
    const Index shift = strip.size();
    const Index first = net.firstLayer[container];
    const Index last = net.lastLayer(container);
    const Index begin = net.layerBegin[first];
    StripFiller filler(strip, net, container);
    for (Index layer = first; layer <= last; ++layer) {
        strip.layerBegin.push_back(layer == first ? 0 : shift + net.layerBegin[layer] - begin);
        for (Index i = net.layerBegin[layer]; i < net.layerBegin[layer + 1]; ++i) {
            const Index vertex = net.order[i];
            const bool isLast = i + 1 == net.layerBegin[layer + 1];
            strip.vertex.push_back(vertex);
            strip.height.push_back(net.height[vertex]);
            strip.isLast.push_back(isLast ? 1 : 0);
            strip.isFirst.push_back(strip.size() == strip.layerBegin.back() + 1 ? 1 : 0);
            strip.isOnLine.push_back(net.isOnLine[vertex]);
            strip.gapBelow.push_back(isLast ? 0 : distance(net, vertex, net.order[i + 1], spacing));
            strip.inBegin.push_back(static_cast<Index>(strip.in.size()));
            strip.outBegin.push_back(static_cast<Index>(strip.out.size()));
            filler.addTies(vertex);
        }
    }
    strip.layerBegin.push_back(shift + net.layerBegin[last + 1] - begin);
    strip.inBegin.push_back(static_cast<Index>(strip.in.size()));
    strip.outBegin.push_back(static_cast<Index>(strip.out.size()));
}

}  // namespace tessera_draw::placing
