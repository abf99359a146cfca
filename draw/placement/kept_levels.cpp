#include "draw/placement/kept_levels.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <optional>
#include <vector>

#include "draw/placement/end_labels.h"
#include "draw/placement/nesting.h"
#include "draw/placement/route_segments.h"

namespace tessera_draw {
namespace {

using namespace placing;  // NOLINT(google-build-using-namespace): this is one of its steps

using Level = std::int64_t;

constexpr Level step = 8;  // from layer to layer, so that new ones fit between

class LevelKeeper {
  public:
    explicit LevelKeeper(PlacementInput& input)
        : m_input(input), m_nesting(nestingOf(input.boxes)), m_level(input.boxes.size()) {}

    void run() {
        readKept();
        findArrows();
        sortNew();
        for (const Index box : m_order)
            placeAfter(box);
        std::for_each(m_order.rbegin(), m_order.rend(), [&](Index box) { placeBefore(box); });
        setLevels();
    }

  private:
    struct Arrow {
        Index from;
        Index to;
    };

    [[nodiscard]] bool isMember(Index box, Index container) const {
        return box < m_input.boxes.size() && m_nesting.containerAround(box) == container;
    }

    void readKept() {
        m_isKept.assign(m_nesting.containerCount(), 0);
        for (const ContainerLayers& kept : m_input.kept) {
            const Index box = kept.box == nothing ? m_nesting.drawing : kept.box;
            const Index container = box <= m_nesting.drawing ? m_nesting.containerOf[box] : nothing;
            if (container == nothing) continue;
            Level level = 0;
            for (const KeptLayer& layer : kept.layers) {
                bool isUsed = false;
                for (const LayerPoint& point : layer.points) {
                    if (point.box == nothing || !isMember(point.box, container)) continue;
                    m_level[point.box] = level;
                    isUsed = true;
                }
                level += isUsed ? step : 0;
                if (isUsed) m_isKept[container] = 1;
            }
        }
    }

    // Between members of containers whose layers are kept.
    void findArrows() {
        EndLabels endLabels = endLabelsOf(m_input, m_nesting);
        for (const RouteSegment& segment : routeSegmentsOf(m_input, m_nesting, endLabels))
            if (segment.fromMember != nothing && segment.toMember != nothing &&
                segment.fromMember != segment.toMember && m_isKept[segment.container] != 0)
                m_arrows.push_back({segment.fromMember, segment.toMember});
        m_reversed = m_arrows;
        m_begin = sortBy(m_arrows, &Arrow::from);
        m_reversedBegin = sortBy(m_reversed, &Arrow::to);
    }

    std::vector<Index> sortBy(std::vector<Arrow>& arrows, Index Arrow::*end) const {
        std::vector<Index> begin(m_input.boxes.size() + 1, 0);
        for (const Arrow& arrow : arrows)
            ++begin[arrow.*end + 1];
        std::partial_sum(begin.begin(), begin.end(), begin.begin());
        std::stable_sort(arrows.begin(), arrows.end(),
                         [&](const Arrow& a, const Arrow& b) { return a.*end < b.*end; });
        return begin;
    }

    // New boxes after those that lead to them; what forms cycles comes last.
    void sortNew() {
        std::vector<Index> open(m_input.boxes.size(), 0);
        for (const Arrow& arrow : m_arrows)
            if (isNew(arrow.from) && isNew(arrow.to)) ++open[arrow.to];
        for (Index box = 0; box < open.size(); ++box)
            if (isNew(box) && open[box] == 0) m_order.push_back(box);
        for (std::size_t head = 0; head < m_order.size(); ++head)
            forEachNext(m_order[head], [&](Index next) {
                if (isNew(next) && --open[next] == 0) m_order.push_back(next);
            });
        for (Index box = 0; box < open.size(); ++box)
            if (isNew(box) && open[box] > 0) m_order.push_back(box);
    }

    [[nodiscard]] bool isNew(Index box) const {
        return !m_level[box] && m_isKept[m_nesting.containerAround(box)] != 0;
    }

    template <class Take>
    void forEachNext(Index box, Take take) const {
        for (Index i = m_begin[box]; i < m_begin[box + 1]; ++i)
            take(m_arrows[i].to);
    }
    template <class Take>
    void forEachBefore(Index box, Take take) const {
        for (Index i = m_reversedBegin[box]; i < m_reversedBegin[box + 1]; ++i)
            take(m_reversed[i].from);
    }

    void placeAfter(Index box) {
        std::optional<Level> after;   // the last that leads to it
        std::optional<Level> before;  // the first that it leads to
        forEachBefore(box, [&](Index other) {
            if (m_level[other]) after = std::max(after.value_or(*m_level[other]), *m_level[other]);
        });
        forEachNext(box, [&](Index other) {
            if (m_level[other]) before = std::min(before.value_or(*m_level[other]), *m_level[other]);
        });
        if (!after) return;
        m_level[box] = *after + step;
        if (!before) return;
        const auto [low, high] = std::minmax(*after, *before);
        const bool isBetween = m_input.boxes[box].isLabel || *before > *after;
        if (!isBetween || high == low) return;
        // In the layer in the middle, or in a new one where they are neighbours.
        const Level layers = (high - low) / step;
        m_level[box] = layers > 1 ? low + layers / 2 * step : (low + high) / 2;
    }

    // Those that nothing leads to.
    void placeBefore(Index box) {
        if (m_level[box]) return;
        std::optional<Level> before;
        forEachNext(box, [&](Index other) {
            if (m_level[other]) before = std::min(before.value_or(*m_level[other]), *m_level[other]);
        });
        m_level[box] = before ? *before - step : 0;
    }

    // From 0 on in each container: -1 would have a meaning of its own.
    void setLevels() {
        std::vector<Level> lowest(m_nesting.containerCount(), 0);
        for (Index box = 0; box < m_level.size(); ++box) {
            Level& low = lowest[m_nesting.containerAround(box)];
            low = std::min(low, m_level[box].value_or(low));
        }
        constexpr Level most = INT32_MAX;
        for (Index box = 0; box < m_level.size(); ++box)
            if (const std::optional<Level> level = m_level[box]; level)
                m_input.boxes[box].level = static_cast<std::int32_t>(
                    std::min(*level - lowest[m_nesting.containerAround(box)], most));
    }

    PlacementInput& m_input;
    const Nesting m_nesting;
    std::vector<std::optional<Level>> m_level;  // by box
    std::vector<char> m_isKept;                 // by container
    std::vector<Arrow> m_arrows;                // by `from`
    std::vector<Index> m_begin;
    std::vector<Arrow> m_reversed;  // by `to`
    std::vector<Index> m_reversedBegin;
    std::vector<Index> m_order;
};

}  // namespace

void keepLevels(PlacementInput& input) {
    if (!input.kept.empty()) LevelKeeper(input).run();
}

}  // namespace tessera_draw
