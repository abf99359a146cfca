#include "host/meaning/comparison.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <unordered_set>
#include <utility>

#include "host/document/text.h"

namespace tessera_host {
namespace {

using basekit2::variant_bag_t;

constexpr std::array<std::string_view, 1> nodeInfos{"info"};
constexpr std::array<std::string_view, 3> linkInfos{"fromInfo", "totalInfo", "toInfo"};

// Relative changes up to these have the steps from the second one on.
constexpr std::array<double, 3> stepEnds{0.1, 0.5, 1};
constexpr std::array<const char*, 5> stepTexts{"no change", "≤ 10 %", "≤ 50 %", "≤ 100 %", "more"};

std::int32_t stepOf(const ValueChange& change) {
    if (change.kind == ChangeKind::same || change.kind == ChangeKind::text) return 1;
    const auto last = static_cast<std::int32_t>(stepTexts.size());
    if (!change.relative) return last;
    const auto* const end = std::find_if(stepEnds.begin(), stepEnds.end(),
                                         [&](double limit) { return std::abs(*change.relative) <= limit; });
    return static_cast<std::int32_t>(end - stepEnds.begin()) + 2;
}

template <class Visit>
void forEach(const variant_bag_t& bag, std::string_view list, std::string_view name, Visit visit) {
    const variant_bag_t* found = bag.get_variant_bag(list);
    if (found == nullptr) return;
    for (auto child = found->begin(); !child.at_end(); child.next())
        if (child.get_name() == name) visit(child.get_value());
}

template <class Visit>
void forEachRow(const variant_bag_t& element, std::string_view info, Visit visit) {
    if (const variant_bag_t* found = element.get_variant_bag(info)) forEach(*found, "rows", "row", visit);
}

// Puts what differs together, each value once.
class ChangeList {
  public:
    ChangeList(const TaggedDiagram& here, const TaggedDiagram& there) : m_here(here), m_there(there) {}

    std::vector<ChangedValue> make() {
        forEach(m_here.bag, "nodes", "node", [&](const variant_bag_t& node) {
            m_captions.insert_or_assign(node.get_text("id"), captionOf(node));
        });
        addAll(m_here, m_there.record, true);
        addAll(m_there, m_here.record, false);
        std::stable_sort(
            m_changes.begin(), m_changes.end(),
            [](const ChangedValue& a, const ChangedValue& b) { return a.change.isLargerThan(b.change); });
        return std::move(m_changes);
    }

  private:
    static std::string_view captionOf(const variant_bag_t& node) {
        const std::string_view name = node.get_text("displayName");
        return name.empty() ? node.get_text("id") : name;
    }

    std::string captionAt(std::string_view id) const {
        const auto known = m_captions.find(id);
        return std::string(known == m_captions.end() ? id : known->second);
    }

    void addAll(const TaggedDiagram& side, const CellRecord& other, bool isHere) {
        forEach(side.bag, "nodes", "node", [&](const variant_bag_t& node) {
            for (const std::string_view info : nodeInfos)
                forEachRow(node, info, [&](const variant_bag_t& row) {
                    add(side, row, other, isHere, [&] { return std::string(captionOf(node)); });
                });
        });
        forEach(side.bag, "links", "link", [&](const variant_bag_t& link) {
            for (const std::string_view info : linkInfos)
                forEachRow(link, info, [&](const variant_bag_t& row) {
                    add(side, row, other, isHere, [&] {
                        return captionAt(link.get_text("from")) + " -> " + captionAt(link.get_text("to"));
                    });
                });
        });
    }

    template <class Place>
    void add(const TaggedDiagram& side, const variant_bag_t& row, const CellRecord& other, bool isHere,
             const Place& place) {
        const RecordedCell* cell = side.record.untagged(row.get_text("value")).cell;
        if (cell == nullptr || !m_seen.insert(cell).second) return;
        const RecordedCell* same = other.find(*cell->reference);
        // Those that both have were listed with the first diagram.
        if (!isHere && same != nullptr) return;
        const ValueChange change = isHere ? changeOf(cell, same) : changeOf(nullptr, cell);
        if (change.kind == ChangeKind::same) return;
        const std::string_view name = row.get_text("name");
        m_changes.push_back({oneLine(name.empty() ? place() : std::string(name) + " of " + place()),
                             isHere ? cell->text : "",
                             !isHere           ? cell->text
                             : same == nullptr ? ""
                                               : same->text,
                             change});
    }

    const TaggedDiagram& m_here;
    const TaggedDiagram& m_there;
    std::unordered_map<std::string_view, std::string_view> m_captions;  // of nodes by id
    std::unordered_set<const RecordedCell*> m_seen;
    std::vector<ChangedValue> m_changes;
};

}  // namespace

Comparison::Comparison(const CellRecord& here, const TaggedDiagram& there, std::string name)
    : m_here(here), m_there(there), m_name(std::move(name)) {
    forEach(there.bag, "nodes", "node", [&](const variant_bag_t& node) { collectMissing(node, false); });
    forEach(there.bag, "links", "link", [&](const variant_bag_t& link) { collectMissing(link, true); });
    std::unordered_set<const RecordedCell*> cells;
    for (const auto& [key, list] : m_missing)
        for (const Missing& missing : list)
            cells.insert(missing.cell);
    m_missingCount = cells.size();
}

std::string Comparison::keyOf(bool isLink, std::string_view id, std::string_view info) {
    return std::string(isLink ? "l" : "n").append(info).append("/").append(id);
}

void Comparison::collectMissing(const variant_bag_t& element, bool isLink) {
    const auto collect = [&](std::string_view info) {
        forEachRow(element, info, [&](const variant_bag_t& row) {
            const RecordedCell* cell = m_there.record.untagged(row.get_text("value")).cell;
            if (cell != nullptr && m_here.find(*cell->reference) == nullptr)
                m_missing[keyOf(isLink, element.get_text("id"), info)].push_back(
                    {row.get_text("name"), cell});
        });
    };
    if (isLink)
        std::for_each(linkInfos.begin(), linkInfos.end(), collect);
    else
        std::for_each(nodeInfos.begin(), nodeInfos.end(), collect);
}

void Comparison::describe(const RecordedCell& here, variant_bag_t& row) {
    const RecordedCell* there = m_there.record.find(*here.reference);
    const ValueChange change = changeOf(&here, there);
    m_kinds.emplace(&here, change.kind);
    row.append_text("change", nameOf(change.kind));
    if (there != nullptr) row.append_text("other", there->text);
    if (!change.difference.empty()) row.append_text("difference", change.difference);
    if (change.relative) row.append_text("percent", change.percent());
    row.append("width", basekit2::variant_t(stepOf(change)));
}

bool Comparison::hasMissing(bool isLink, std::string_view id, std::string_view info) const {
    return m_missing.contains(keyOf(isLink, id, info));
}

void Comparison::addMissing(bool isLink, std::string_view id, std::string_view info,
                            variant_bag_t& rows) const {
    const auto found = m_missing.find(keyOf(isLink, id, info));
    if (found == m_missing.end()) return;
    for (const auto& [name, cell] : found->second) {
        variant_bag_t& row = rows.add_variant_bag("row");
        row.append_text("name", name);
        row.append_text("value", "–");
        row.append_text("change", nameOf(ChangeKind::there));
        row.append_text("other", cell->text);
        row.append("width", basekit2::variant_t(stepOf(changeOf(nullptr, cell))));
    }
}

void Comparison::describeAll(variant_bag_t& meaning) const {
    std::array<std::size_t, 6> counts{};
    for (const auto& [cell, kind] : m_kinds)
        ++counts[static_cast<std::size_t>(kind)];
    counts[static_cast<std::size_t>(ChangeKind::there)] = m_missingCount;
    std::string text;
    const auto add = [&](ChangeKind kind, const char* what) {
        const std::size_t count = counts[static_cast<std::size_t>(kind)];
        if (count > 0) text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, what);
    };
    add(ChangeKind::more, "more");
    add(ChangeKind::less, "less");
    add(ChangeKind::text, "other texts");
    add(ChangeKind::here, "only here");
    add(ChangeKind::there, "only there");
    add(ChangeKind::same, "the same");
    meaning.add_variant_bag("comparison")
        .put("text", "compared with " + m_name + ": " + (text.empty() ? "no values" : text));
    variant_bag_t& widths = meaning.add_variant_bag("widths");
    widths.put("name", "change");
    for (const char* step : stepTexts)
        widths.add_variant_bag("step").put("text", step);
}

std::vector<ChangedValue> changesOf(const TaggedDiagram& here, const TaggedDiagram& there) {
    return ChangeList(here, there).make();
}

}  // namespace tessera_host
