#include "draw/placement/label_layers.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace tessera_draw::placing {
namespace {

using LabelEnd = BoxToPlace::LabelEnd;

class LabelPlacer {
  public:
    LabelPlacer(PlacementInput& input, const Nesting& nesting, const std::vector<char>& isFree,
                const std::vector<LabelsOfLine>& lines)
        : m_input(input), m_nesting(nesting), m_isFree(isFree), m_lines(lines), m_widths(input.boxes.size()) {
        for (std::size_t i = 0; i < m_widths.size(); ++i)
            m_widths[i] = input.boxes[i].size.width;
        addEndLabels();
    }

    // Inner containers first: outer ones need their widths.
    void place() {
        std::size_t end = m_lines.size();
        for (Index container = m_nesting.containerCount(); container-- > 0;) {
            std::size_t begin = end;
            while (begin > 0 && m_lines[begin - 1].container == container)
                --begin;
            const double width = measureLayers(container);
            if (m_isFree[container]) setLevels(begin, end);
            end = begin;
            const Index box = m_nesting.boxOf[container];
            if (box == m_nesting.drawing) continue;
            const Insets& padding = m_input.boxes[box].padding;
            m_widths[box] += std::max(m_input.boxes[box].size.width, padding.left + width + padding.right) -
                             m_input.boxes[box].size.width;
        }
    }

  private:
    struct Layer {
        std::int32_t rank = 0;
        double x = 0;
        double width = 0;
    };

    // End labels stand beside their boxes; they are counted once for both sides.
    void addEndLabels() {
        std::vector<double> widest(m_widths.size(), 0);
        for (const LineToPlace& line : m_input.lines)
            for (const Index label : line.through) {
                if (label >= m_widths.size() || isInMiddle(m_input.boxes[label].labelEnd)) continue;
                const Index box = m_input.boxes[label].labelEnd == LabelEnd::from ? line.from : line.to;
                if (box < widest.size()) widest[box] = std::max(widest[box], m_input.boxes[label].size.width);
            }
        for (std::size_t i = 0; i < widest.size(); ++i)
            m_widths[i] += widest[i];
    }

    // Returns the width of all layers together.
    double measureLayers(Index container) {
        m_members.clear();
        for (Index i = m_nesting.memberBegin[container]; i < m_nesting.memberBegin[container + 1]; ++i)
            if (!m_input.boxes[m_nesting.members[i]].isLabel) m_members.push_back(m_nesting.members[i]);
        std::sort(m_members.begin(), m_members.end(),
                  [&](Index a, Index b) { return rankOf(a) < rankOf(b); });
        m_layers.clear();
        double x = 0;
        for (const Index box : m_members) {
            if (m_layers.empty() || m_layers.back().rank != rankOf(box)) {
                if (!m_layers.empty()) x += m_layers.back().width + m_spacing.betweenLayers;
                m_layers.push_back({rankOf(box), x, 0});
            }
            m_layers.back().width = std::max(m_layers.back().width, m_widths[box]);
        }
        return m_layers.empty() ? 0 : x + m_layers.back().width;
    }

    [[nodiscard]] std::int32_t rankOf(Index box) const { return m_input.boxes[box].level; }

    // The position of the layer in m_layers; -1 and one more than the last for the borders.
    [[nodiscard]] std::ptrdiff_t layerOf(Index box) const {
        return std::lower_bound(m_layers.begin(), m_layers.end(), rankOf(box),
                                [](const Layer& layer, std::int32_t rank) { return layer.rank < rank; }) -
               m_layers.begin();
    }

    [[nodiscard]] double middleOf(std::ptrdiff_t layer) const {
        const Layer& at = m_layers[static_cast<std::size_t>(layer)];
        return at.x + at.width / 2;
    }
    // Of the gap after the layer.
    [[nodiscard]] double gapAfter(std::ptrdiff_t layer) const {
        if (layer < 0) return 0;
        const Layer& at = m_layers[static_cast<std::size_t>(layer)];
        return at.x + at.width + m_spacing.betweenLayers / 2;
    }

    // A position among the layers and the gaps between them.
    struct Place {
        std::ptrdiff_t layer = 0;
        bool isInGap = true;  // after the layer
    };

    [[nodiscard]] Place middlePlace(const LabelsOfLine& line, std::ptrdiff_t first,
                                    std::ptrdiff_t last) const {
        const double begin = line.tail == nothing ? 0 : middleOf(first) + m_widths[line.tail] / 2;
        const double end = line.head == nothing ? m_layers.back().x + m_layers.back().width
                                                : middleOf(last) - m_widths[line.head] / 2;
        const double middle = (begin + end) / 2;
        Place best{first, true};
        double least = std::abs(gapAfter(first) - middle);
        const auto consider = [&](Place place, double x) {
            if (std::abs(x - middle) >= least) return;
            least = std::abs(x - middle);
            best = place;
        };
        // Next to the first layer that begins after the middle.
        const auto after = std::lower_bound(m_layers.begin(), m_layers.end(), middle,
                                            [](const Layer& layer, double x) { return layer.x < x; }) -
                           m_layers.begin();
        // Layers before gaps: there, no column is needed for the label. The middle half is good
        // enough for that, since labels can be moved along their lines later.
        for (std::ptrdiff_t layer = std::max(after - 2, first + 1); layer <= std::min(after + 1, last - 1);
             ++layer)
            consider({layer, false}, middleOf(layer));
        if (!best.isInGap && least <= (end - begin) / 4) return best;
        for (std::ptrdiff_t gap = std::max(after - 2, first); gap <= std::min(after + 1, last - 1); ++gap)
            consider({gap, true}, gapAfter(gap));
        return best;
    }

    void setLevels(std::size_t begin, std::size_t end) {
        std::size_t most = 0;
        for (std::size_t i = begin; i < end; ++i)
            most = std::max(most, m_lines[i].labels.size());
        m_stride = static_cast<std::ptrdiff_t>(most + 1);
        m_positions.clear();
        for (const Index box : m_members)
            position(box, layerOf(box), 0);
        for (std::size_t i = begin; i < end; ++i)
            positionLabels(m_lines[i]);
        numberLevels();
    }

    // At the layer, or in the gap after it if `afterIt` is not 0.
    void position(Index box, std::ptrdiff_t layer, std::ptrdiff_t afterIt) {
        m_positions.emplace_back((layer + 1) * m_stride + afterIt, box);
    }

    void positionLabels(const LabelsOfLine& line) {
        const std::ptrdiff_t first = line.tail == nothing ? -1 : layerOf(line.tail);
        const std::ptrdiff_t last =
            line.head == nothing ? static_cast<std::ptrdiff_t>(m_layers.size()) : layerOf(line.head);
        std::ptrdiff_t place = 0;
        for (const Index label : line.labels) {
            ++place;
            const LabelEnd end = m_input.boxes[label].labelEnd;
            const bool isAtTail = end == (line.isReversed ? LabelEnd::to : LabelEnd::from);
            // A line from a box to itself has its labels after the box.
            if (first >= last || !isInMiddle(end)) {
                position(label, first >= last || isAtTail ? first : last - 1, place);
                continue;
            }
            const Place middle = middlePlace(line, first, last);
            if (line.labels.size() == 1)
                position(label, middle.layer, middle.isInGap ? 1 : 0);
            else
                position(label, middle.isInGap ? middle.layer : middle.layer - 1, place);
        }
    }

    // The order of the positions as levels without gaps.
    void numberLevels() {
        std::sort(m_positions.begin(), m_positions.end());
        std::int32_t level = -1;
        for (std::size_t i = 0; i < m_positions.size(); ++i) {
            if (i == 0 || m_positions[i].first != m_positions[i - 1].first) ++level;
            m_input.boxes[m_positions[i].second].level = level;
        }
    }

    PlacementInput& m_input;
    const Nesting& m_nesting;
    const std::vector<char>& m_isFree;
    const std::vector<LabelsOfLine>& m_lines;
    const Spacing m_spacing;
    std::vector<double> m_widths;  // by box: estimated, with its end labels
    // Of the container at work:
    std::vector<Index> m_members;  // that are no labels, by layer
    std::vector<Layer> m_layers;
    std::ptrdiff_t m_stride = 1;                                // between the positions of two layers
    std::vector<std::pair<std::ptrdiff_t, Index>> m_positions;  // of boxes, to be put in order
};

}  // namespace

void placeLabels(PlacementInput& input, const Nesting& nesting, const std::vector<char>& isFree,
                 const std::vector<LabelsOfLine>& lines) {
    LabelPlacer(input, nesting, isFree, lines).place();
}

}  // namespace tessera_draw::placing
