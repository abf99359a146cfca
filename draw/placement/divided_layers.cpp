#include "draw/placement/divided_layers.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "draw/placement/end_labels.h"
#include "draw/placement/layers.h"
#include "draw/placement/nesting.h"
#include "draw/placement/route_segments.h"

namespace tessera_draw::placing {
namespace {

class LayerDivider {
  public:
    LayerDivider(const PlacementInput& input, const std::vector<Rect>& placed, double most,
                 const Spacing& spacing)
        : m_input(input),
          m_placed(placed),
          m_most(most),
          m_spacing(spacing),
          m_nesting(nestingOf(input.boxes)),
          m_share(input.boxes.size(), 0) {
        EndLabels endLabels = endLabelsOf(input, m_nesting);
        m_segments = routeSegmentsOf(input, m_nesting, endLabels);
        removeFromMembers(endLabels, m_nesting);
        m_layers = layersOf(input.boxes, m_nesting, m_segments);
        findMovable();
    }

    std::optional<PlacementInput> divide() {
        m_begin.resize(m_input.boxes.size());
        m_parts.assign(m_input.boxes.size(), 1);
        for (Index container = 0; container < m_nesting.containerCount(); ++container)
            divideLayersOf(container);
        if (!m_isDivided) return std::nullopt;
        PlacementInput result = m_input;
        for (const Index box : m_nesting.members)
            result.boxes[box].level = levelOf(box);
        for (const RouteSegment& segment : m_segments)
            if (segment.fromMember != nothing && segment.toMember != nothing) moveLabels(segment, result);
        return result;
    }

  private:
    // Boxes that lines lead to or from. Others are arranged in a grid where they are many.
    void findMovable() {
        m_isMovable.assign(m_input.boxes.size(), 0);
        for (const RouteSegment& segment : m_segments)
            for (const Index member : {segment.fromMember, segment.toMember})
                if (member != nothing && !m_input.boxes[member].isLabel &&
                    m_input.boxes[member].border == BoxToPlace::Border::none)
                    m_isMovable[member] = 1;
    }

    void divideLayersOf(Index container) {
        std::vector<Index> members(m_nesting.members.begin() + m_nesting.memberBegin[container],
                                   m_nesting.members.begin() + m_nesting.memberBegin[container + 1]);
        std::sort(members.begin(), members.end(), [&](Index a, Index b) {
            if (m_layers.ofBox[a] != m_layers.ofBox[b]) return m_layers.ofBox[a] < m_layers.ofBox[b];
            return m_placed[a].y != m_placed[b].y ? m_placed[a].y < m_placed[b].y : a < b;
        });
        std::int32_t level = 0;
        for (auto begin = members.begin(); begin != members.end();) {
            const auto end = std::find_if(begin, members.end(), [&](Index box) {
                return m_layers.ofBox[box] != m_layers.ofBox[*begin];
            });
            level += divideLayer(begin, end, level);
            begin = end;
        }
    }

    // Returns how many levels it takes: between its parts there is one for labels.
    std::int32_t divideLayer(std::vector<Index>::const_iterator begin, std::vector<Index>::const_iterator end,
                             std::int32_t level) {
        double height = 0;
        std::int32_t count = 0;
        for (auto box = begin; box != end; ++box)
            if (m_isMovable[*box]) {
                height += m_placed[*box].height + m_spacing.betweenBoxes;
                ++count;
            }
        const auto wanted =
            static_cast<std::int32_t>(std::min(std::ceil(height / m_most - tolerance), double{mostParts}));
        const std::int32_t parts = std::clamp(wanted, 1, std::max(count, 1));
        m_isDivided = m_isDivided || parts > 1;
        std::int32_t next = 0;
        for (auto box = begin; box != end; ++box) {
            m_begin[*box] = level;
            m_parts[*box] = parts;
            if (m_isMovable[*box]) m_share[*box] = next++ % parts;
        }
        return 2 * parts - 1;
    }

    [[nodiscard]] std::int32_t levelOf(Index box) const { return m_begin[box] + 2 * m_share[box]; }

    // The label of a box in a later part stands before that part, and the label of a line from an earlier part after it.
    void moveLabels(const RouteSegment& segment, PlacementInput& result) const {
        const auto areNeighbours = [&](Index before, Index after) {
            return m_layers.ofBox[before] + 1 == m_layers.ofBox[after];
        };
        for (const auto& [label, box] : {std::pair(segment.fromMember, segment.toMember),
                                         std::pair(segment.toMember, segment.fromMember)}) {
            if (!m_input.boxes[label].isLabel || !m_isMovable[box]) continue;
            if (areNeighbours(label, box) && m_share[box] > 0) result.boxes[label].level = levelOf(box) - 1;
            if (areNeighbours(box, label) && m_share[box] + 1 < m_parts[box])
                result.boxes[label].level = levelOf(box) + 1;
        }
    }

    static constexpr int mostParts = 16;
    static constexpr double tolerance = 0.25;  // parts may be a little higher than wanted

    const PlacementInput& m_input;
    const std::vector<Rect>& m_placed;
    double m_most;
    const Spacing& m_spacing;
    Nesting m_nesting;
    std::vector<RouteSegment> m_segments;
    Layers m_layers;
    std::vector<char> m_isMovable;      // by box
    std::vector<std::int32_t> m_begin;  // by box: the first level of its layer
    std::vector<std::int32_t> m_parts;  // how many its layer has
    std::vector<std::int32_t> m_share;  // the one that it is in
    bool m_isDivided = false;
};

}  // namespace

std::optional<PlacementInput> withDividedLayers(const PlacementInput& input, const std::vector<Rect>& placed,
                                                double most, const Spacing& spacing) {
    return LayerDivider(input, placed, most, spacing).divide();
}

}  // namespace tessera_draw::placing
