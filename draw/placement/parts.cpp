#include "draw/placement/parts.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

#include "draw/placement/nesting.h"
#include "draw/placement/route_segments.h"

namespace tessera_draw::placing {
namespace {

class PartFinder {
  public:
    explicit PartFinder(const PlacementInput& input)
        : m_input(input),
          m_nesting(nestingOf(input.boxes)),
          m_isOpen(m_nesting.containerCount(), 0),
          m_next(input.boxes.size()),
          m_hasLine(input.boxes.size(), 0),
          m_steps(8 * (input.boxes.size() + input.lines.size()) + 200'000) {
        std::iota(m_next.begin(), m_next.end(), Index{0});
    }

    std::optional<PlacementInput> find() {
        for (const LineToPlace& line : m_input.lines)
            if (isWhole(line, m_input.boxes.size())) joinStops(line);
        for (Index box = 0; box < m_input.boxes.size(); ++box)
            if (m_input.boxes[box].border != BoxToPlace::Border::none)
                m_isOpen[m_nesting.containerAround(box)] = 1;
        if (m_steps == 0)
            return std::nullopt;  // lines cross so many borders that their parts are not looked for
        for (Index container = 0; container < m_nesting.containerCount(); ++container)
            if (!m_isOpen[container]) split(container);
        if (!m_hasParts) return std::nullopt;
        return std::move(m_result);
    }

  private:
    void joinStops(const LineToPlace& line) {
        Index from = line.from;
        for (std::size_t i = 0; i <= line.through.size(); ++i) {
            const Index to = i < line.through.size() ? line.through[i] : line.to;
            const RouteSegment segment = routeSegmentBetween(from, to, m_nesting);
            open(from, segment.fromMember);
            open(to, segment.toMember);
            if (segment.fromMember == nothing || segment.toMember == nothing)
                m_isOpen[segment.container] = 1;
            else
                join(segment.fromMember, segment.toMember);
            from = to;
        }
    }

    // Marks the containers whose borders a line crosses between a box and a member around it.
    void open(Index box, Index member) {
        for (; member != nothing && box != member && m_steps > 0; --m_steps) {
            m_isOpen[m_nesting.containerAround(box)] = 1;
            box = m_nesting.tree.parent(box);
        }
    }

    Index find(Index box) {
        while (m_next[box] != box)
            box = m_next[box] = m_next[m_next[box]];
        return box;
    }

    // The first box of a part stands for it.
    void join(Index a, Index b) {
        m_hasLine[a] = m_hasLine[b] = 1;
        a = find(a);
        b = find(b);
        m_next[std::max(a, b)] = std::min(a, b);
    }

    // A line that names a missing box must not find one of the new ones.
    void copyInput() {
        m_hasParts = true;
        m_partOf.assign(m_input.boxes.size(), nothing);
        m_result = m_input;
        for (LineToPlace& line : m_result.lines)
            if (!isWhole(line, m_input.boxes.size())) line = {};
    }

    void split(Index container) {
        std::vector<Index> parts;
        bool isWorthIt = false;  // single cards are placed well without this
        const auto begin = m_nesting.members.begin() + m_nesting.memberBegin[container];
        const auto end = m_nesting.members.begin() + m_nesting.memberBegin[container + 1];
        for (auto member = begin; member != end; ++member) {
            if (find(*member) == *member) parts.push_back(*member);
            isWorthIt = isWorthIt || m_hasLine[*member] != 0 || m_nesting.containerOf[*member] != nothing;
        }
        if (parts.size() < 2 || !isWorthIt) return;
        if (!m_hasParts) copyInput();
        std::vector<BoxToPlace>& boxes = m_result.boxes;
        const Index around = m_nesting.boxOf[container];
        for (const Index part : parts) {
            boxes[part].level = 0;
            boxes[part].isPart = m_nesting.containerOf[part] != nothing;
            if (m_hasLine[part] == 0) continue;
            boxes[part].isPart = false;
            BoxToPlace& made = boxes.emplace_back();
            made.group = around == m_nesting.drawing ? nothing : around;
            made.level = 0;
            made.isContainer = made.isPart = true;
            m_partOf[part] = static_cast<Index>(boxes.size()) - 1;
        }
        for (auto member = begin; member != end; ++member)
            if (m_hasLine[*member] != 0) {
                boxes[*member].level = m_input.boxes[*member].level;
                boxes[*member].group = m_partOf[find(*member)];
            }
    }

    const PlacementInput& m_input;
    const Nesting m_nesting;
    std::vector<char> m_isOpen;   // by container: lines lead out of it
    std::vector<Index> m_next;    // by box: a box of the same part, and in the end its first one
    std::vector<char> m_hasLine;  // by box: inside its container
    std::size_t m_steps;
    std::vector<Index> m_partOf;  // by first box
    bool m_hasParts = false;
    PlacementInput m_result;
};

}  // namespace

std::optional<PlacementInput> withParts(const PlacementInput& input) {
    return PartFinder(input).find();
}

}  // namespace tessera_draw::placing
