#include "draw/scene/kept_input.h"

#include <map>
#include <string_view>
#include <utility>
#include <vector>

namespace tessera_draw {
namespace {

// Ids of boxes, or of lines, and their numbers among those with the same id.
class Names {
  public:
    void add(std::string_view id, Index index) {
        const std::uint32_t copy = m_counts[id]++;
        m_found[{id, copy}] = index;
        if (index >= m_ids.size()) m_ids.resize(index + 1);
        m_ids[index] = {id, copy};
    }

    // `nothing` for an unknown one.
    [[nodiscard]] Index find(const SavedId& id) const {
        const auto found = m_found.find({id.id, id.copy});
        return found == m_found.end() ? nothing : found->second;
    }
    [[nodiscard]] SavedId idOf(Index index) const {
        return {std::string(m_ids[index].first), m_ids[index].second};
    }

  private:
    using Name = std::pair<std::string_view, std::uint32_t>;
    std::map<std::string_view, std::uint32_t> m_counts;
    std::map<Name, Index> m_found;
    std::vector<Name> m_ids;
};

Names boxNames(const Diagram& diagram, const SceneInput& input) {
    Names names;
    for (std::size_t i = 0; i < diagram.nodes.size(); ++i)
        if (input.boxOfNode[i] != nothing) names.add(diagram.nodes[i].id, input.boxOfNode[i]);
    return names;
}

Names lineNames(const LinkPaths& linkPaths, const SceneInput& input) {
    Names names;
    for (std::size_t i = 0; i < input.pathOfLine.size(); ++i)
        names.add(linkPaths.paths[input.pathOfLine[i]].id, static_cast<Index>(i));
    return names;
}

}  // namespace

KeptLayers keptLayersOf(const SavedLayout& saved, const Diagram& diagram, const LinkPaths& linkPaths,
                        const SceneInput& input) {
    const Names boxes = boxNames(diagram, input);
    const Names lines = lineNames(linkPaths, input);
    KeptLayers kept;
    for (const SavedGroup& group : saved.groups) {
        const Index box = group.isTop ? nothing : boxes.find(group.id);
        if (!group.isTop && box == nothing) continue;
        ContainerLayers& container = kept.emplace_back();
        container.box = box;
        container.top = group.at;
        for (const SavedLayer& layer : group.layers) {
            KeptLayer& own = container.layers.emplace_back();
            own.isRowEnd = layer.isRowEnd;
            for (const SavedPoint& point : layer.points) {
                const Index found = point.isLink ? lines.find(point.id) : boxes.find(point.id);
                if (found == nothing) continue;
                own.points.push_back({point.isLink ? nothing : found, point.isLink ? found : nothing,
                                      point.part, point.at, point.size});
            }
        }
    }
    return kept;
}

SavedLayout savedLayoutOf(const KeptLayers& layers, Direction direction, const Diagram& diagram,
                          const LinkPaths& linkPaths, const SceneInput& input) {
    const Names boxes = boxNames(diagram, input);
    const Names lines = lineNames(linkPaths, input);
    SavedLayout saved{direction, {}};
    for (const ContainerLayers& container : layers) {
        SavedGroup& group = saved.groups.emplace_back();
        group.isTop = container.box == nothing;
        group.at = container.top;
        if (!group.isTop) group.id = boxes.idOf(container.box);
        for (const KeptLayer& layer : container.layers) {
            SavedLayer& own = group.layers.emplace_back();
            own.isRowEnd = layer.isRowEnd;
            for (const LayerPoint& point : layer.points) {
                const bool isLink = point.box == nothing;
                if (isLink && point.line == nothing) continue;
                own.points.push_back({isLink ? lines.idOf(point.line) : boxes.idOf(point.box), isLink,
                                      point.part, point.top, point.size});
            }
        }
    }
    return saved;
}

}  // namespace tessera_draw
