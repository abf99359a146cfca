#include "host/meaning/described_values.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <unordered_map>
#include <utility>

#include "host/meaning/level_finder.h"
#include "host/meaning/value_change.h"

namespace tessera_host {
namespace {

using basekit2::variant_bag_t;

// How far a value is past its bound. Bounds of 0 have no relation, so there the distance itself decides.
std::pair<double, double> excessOf(double number, double bound) {
    const double distance = std::abs(number - bound);
    return {bound == 0 ? std::numeric_limits<double>::infinity() : distance / std::abs(bound), distance};
}

class Describer {
  public:
    Describer(const CellRecord& record, const ValueMeaning& meaning, const Declarations& declarations,
              Description description, Comparison* comparison)
        : m_record(record),
          m_meaning(meaning),
          m_declarations(declarations),
          m_finder(meaning),
          m_isFull(description == Description::full),
          m_comparison(comparison) {
        m_result.summary.counts.resize(meaning.levels().size());
    }

    DescribedDiagram describe(const variant_bag_t& diagram) {
        // First the worst value, which rows are marked with; then the copy.
        visit(diagram, nullptr);
        visit(diagram, &m_result.bag);
        if (m_isFull && (!m_meaning.isEmpty() || m_comparison != nullptr))
            addMeaning(m_result.bag.add_variant_bag("meaning"));
        return std::move(m_result);
    }

  private:
    enum class Kind : std::uint8_t { other, node, link, info, rows, row };

    struct Place {
        const variant_bag_t* source;
        variant_bag_t* target;  // null: nothing is copied
        Kind kind;
        std::string_view info;       // of an info and its rows: its name
        const variant_bag_t* owner;  // and the node or link that it belongs to
        bool isLink;                 // whether that is a link
    };

    static Kind kindOf(const Place& parent, std::string_view name) {
        if (name == "row") return Kind::row;
        if (name == "rows") return Kind::rows;
        if (name == "node") return Kind::node;
        if (name == "link") return Kind::link;
        return parent.kind == Kind::node || parent.kind == Kind::link ? Kind::info : Kind::other;
    }

    // A stack of its own instead of recursion, as everywhere.
    void visit(const variant_bag_t& diagram, variant_bag_t* target) {
        std::vector<Place> open{{&diagram, target, Kind::other, {}, nullptr, false}};
        while (!open.empty()) {
            const Place place = open.back();
            open.pop_back();
            if (place.target != nullptr)
                copyValues(place);
            else if (place.kind == Kind::row)
                count(*place.source);
            for (auto child = place.source->begin(); !child.at_end(); child.next())
                open.push_back(childOf(place, child.get_name(), child.get_value()));
            if (place.target != nullptr && m_isFull && m_comparison != nullptr) addMissing(place);
        }
    }

    static Place childOf(const Place& parent, std::string_view name, const variant_bag_t& source) {
        Place child{&source,
                    parent.target == nullptr ? nullptr : &parent.target->add_variant_bag(name),
                    kindOf(parent, name),
                    parent.info,
                    parent.owner,
                    parent.isLink};
        if (child.kind != Kind::info) return child;
        child.info = name;
        child.owner = parent.source;
        child.isLink = parent.kind == Kind::link;
        return child;
    }

    // Rows that only the other result has, where there are rows already, and where there are none.
    void addMissing(const Place& place) {
        const bool isInfo = place.kind == Kind::info && place.source->get_variant_bag("rows") == nullptr;
        if (!isInfo && place.kind != Kind::rows) return;
        const std::string_view id = shownId(*place.owner);
        if (!m_comparison->hasMissing(place.isLink, id, place.info)) return;
        variant_bag_t* rows = place.target;
        if (isInfo) {
            rows = &place.target->add_variant_bag("rows");
            rows->put("arrayOf", "row");
        }
        // The rows of the diagram come first: they were added when this place was visited.
        m_comparison->addMissing(place.isLink, id, place.info, *rows);
    }

    // The values of a group can be on a node of their own.
    static std::string_view shownId(const variant_bag_t& owner) {
        return owner.get_text(owner.get_text("type") == "groupInfo" ? "group" : "id");
    }

    void copyValues(const Place& place) {
        for (auto value = place.source->begin_values(); !value.at_end(); value.next()) {
            if (place.kind == Kind::row && value.get_name() == "value")
                place.target->append_text("value", untagged(*place.source).text);
            else
                place.target->append(value.get_name(), value.get_value());
        }
        if (place.kind != Kind::row || !m_isFull) return;
        const RecordedCell* cell = untagged(*place.source).cell;
        if (cell == nullptr) return;
        if (m_comparison != nullptr) m_comparison->describe(*cell, *place.target);
        if (!cell->number) return;
        if (const LevelRule* rule = ruleOf(*cell))
            place.target->append_text("level", m_meaning.levels()[rule->level].name);
        if (cell == m_result.summary.worst) place.target->append("isWorst", basekit2::variant_t(true));
        // Beside another result, lines show changes.
        const std::optional<LinkWidths>& widths = m_meaning.widths();
        if (m_comparison != nullptr || !widths || widths->query != cell->reference->declaration().index)
            return;
        if (const int step = widths->stepOf(*cell->number); step > 0)
            place.target->append("width", basekit2::variant_t(static_cast<std::int32_t>(step)));
    }

    [[nodiscard]] CellRecord::Untagged untagged(const variant_bag_t& row) const {
        return m_record.untagged(row.get_text("value"));
    }

    // Each value once, however many rows show it.
    void count(const variant_bag_t& row) {
        const RecordedCell* cell = untagged(row).cell;
        if (cell == nullptr || !cell->number || m_rules.contains(cell)) return;
        const LevelRule* rule =
            m_rules.emplace(cell, m_finder.find(*cell->reference, *cell->number)).first->second;
        if (rule == nullptr) return;
        LevelSummary& summary = m_result.summary;
        ++summary.counts[rule->level];
        if (!isWorse(*cell, *rule)) return;
        summary.worst = cell;
        summary.worstRule = rule;
    }

    // Equally bad values: the one in the earlier place of the document's declarations and keys, so that the result
    // does not depend on the order of visits.
    [[nodiscard]] bool isWorse(const RecordedCell& cell, const LevelRule& rule) const {
        const LevelSummary& summary = m_result.summary;
        if (summary.worst == nullptr) return true;
        if (rule.level != summary.worstRule->level) return rule.level < summary.worstRule->level;
        const auto excess = excessOf(cell.number.value_or(0), rule.bound);
        const auto before = excessOf(summary.worst->number.value_or(0), summary.worstRule->bound);
        if (excess != before) return excess > before;
        return cell.reference->identifier() < summary.worst->reference->identifier();
    }

    [[nodiscard]] const LevelRule* ruleOf(const RecordedCell& cell) const {
        const auto known = m_rules.find(&cell);
        return known == m_rules.end() ? nullptr : known->second;
    }

    void addMeaning(variant_bag_t& out) const {
        for (const Level& level : m_meaning.levels()) {
            variant_bag_t& bag = out.add_variant_bag("level");
            bag.put("name", level.name);
            if (!level.colour.empty()) bag.put("colour", level.colour);
            bag.put("count",
                    basekit2::variant_t(static_cast<std::int32_t>(m_result.summary.counts[level.rank])));
        }
        if (m_comparison != nullptr)
            m_comparison->describeAll(out);
        else if (const auto& widths = m_meaning.widths())
            addWidths(out, *widths);
    }

    void addWidths(variant_bag_t& out, const LinkWidths& widths) const {
        const QueryDeclaration& query = m_declarations.queries()[widths.query];
        variant_bag_t& bag = out.add_variant_bag("widths");
        bag.put("name", query.id);
        for (int step = 1; step <= LinkWidths::steps; ++step) {
            const bool isLast = step == LinkWidths::steps;
            bag.add_variant_bag("step").put(
                "text", (isLast ? "> " : "≤ ") + numberText(widths.endOf(isLast ? step - 1 : step), query));
        }
    }

    const CellRecord& m_record;
    const ValueMeaning& m_meaning;
    const Declarations& m_declarations;
    const LevelFinder m_finder;
    const bool m_isFull;
    Comparison* const m_comparison;
    // Of the values that rows show; null for those at no level.
    std::unordered_map<const RecordedCell*, const LevelRule*> m_rules;
    DescribedDiagram m_result;
};

}  // namespace

std::size_t LevelSummary::countUpTo(std::size_t rank) const {
    const auto end = std::min(rank + 1, counts.size());
    return std::accumulate(counts.begin(), counts.begin() + static_cast<std::ptrdiff_t>(end), std::size_t{0});
}

DescribedDiagram describeValues(const variant_bag_t& diagram, const CellRecord& record,
                                const ValueMeaning& meaning, const Declarations& declarations,
                                Description description, Comparison* comparison) {
    return Describer(record, meaning, declarations, description, comparison).describe(diagram);
}

}  // namespace tessera_host
