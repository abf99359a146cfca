#include "host/meaning/described_values.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <unordered_map>
#include <utility>

#include "host/meaning/level_finder.h"
#include "host/values/cell_format.h"

namespace tessera_host {
namespace {

using basekit2::variant_bag_t;

// How far a value is past its bound. Bounds of 0 have no relation, so there the distance itself decides.
std::pair<double, double> excessOf(double number, double bound) {
    const double distance = std::abs(number - bound);
    return {bound == 0 ? std::numeric_limits<double>::infinity() : distance / std::abs(bound), distance};
}

// A bound as the values beside it are written: whole numbers as integers, which the plain format keeps as they are.
std::string textOf(double number, const QueryDeclaration& query) {
    constexpr double exact = 9007199254740992;  // 2^53
    const bool isWhole = std::abs(number) < exact && std::trunc(number) == number;
    const CellValue value = isWhole ? CellValue(static_cast<std::int64_t>(number)) : CellValue(number);
    return formatCell(value, query.format, query.unit);
}

class Describer {
  public:
    Describer(const CellRecord& record, const ValueMeaning& meaning, const Declarations& declarations,
              Description description)
        : m_record(record),
          m_meaning(meaning),
          m_declarations(declarations),
          m_finder(meaning),
          m_isFull(description == Description::full) {
        m_result.summary.counts.resize(meaning.levels().size());
    }

    DescribedDiagram describe(const variant_bag_t& diagram) {
        // First the worst value, which rows are marked with; then the copy.
        visit(diagram, nullptr);
        visit(diagram, &m_result.bag);
        if (m_isFull && !m_meaning.isEmpty()) addMeaning(m_result.bag.add_variant_bag("meaning"));
        return std::move(m_result);
    }

  private:
    struct Place {
        const variant_bag_t* source;
        variant_bag_t* target;  // null: nothing is copied
        bool isRow;
    };

    // A stack of its own instead of recursion, as everywhere.
    void visit(const variant_bag_t& diagram, variant_bag_t* target) {
        std::vector<Place> open{{&diagram, target, false}};
        while (!open.empty()) {
            const Place place = open.back();
            open.pop_back();
            if (place.target != nullptr)
                copyValues(place);
            else if (place.isRow)
                count(*place.source);
            for (auto child = place.source->begin(); !child.at_end(); child.next())
                open.push_back(
                    {&child.get_value(),
                     place.target == nullptr ? nullptr : &place.target->add_variant_bag(child.get_name()),
                     child.get_name() == "row"});
        }
    }

    void copyValues(const Place& place) {
        for (auto value = place.source->begin_values(); !value.at_end(); value.next()) {
            if (place.isRow && value.get_name() == "value")
                place.target->append_text("value", untagged(*place.source).text);
            else
                place.target->append(value.get_name(), value.get_value());
        }
        if (!place.isRow || !m_isFull) return;
        const RecordedCell* cell = untagged(*place.source).cell;
        if (cell == nullptr || !cell->number) return;
        if (const LevelRule* rule = ruleOf(*cell))
            place.target->append_text("level", m_meaning.levels()[rule->level].name);
        if (cell == m_result.summary.worst) place.target->append("isWorst", basekit2::variant_t(true));
        const std::optional<LinkWidths>& widths = m_meaning.widths();
        if (!widths || widths->query != cell->reference->declaration().index) return;
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
        if (const auto& widths = m_meaning.widths()) addWidths(out, *widths);
    }

    void addWidths(variant_bag_t& out, const LinkWidths& widths) const {
        const QueryDeclaration& query = m_declarations.queries()[widths.query];
        variant_bag_t& bag = out.add_variant_bag("widths");
        bag.put("name", query.id);
        for (int step = 1; step <= LinkWidths::steps; ++step) {
            const bool isLast = step == LinkWidths::steps;
            bag.add_variant_bag("step").put(
                "text", (isLast ? "> " : "≤ ") + textOf(widths.endOf(isLast ? step - 1 : step), query));
        }
    }

    const CellRecord& m_record;
    const ValueMeaning& m_meaning;
    const Declarations& m_declarations;
    const LevelFinder m_finder;
    const bool m_isFull;
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
                                Description description) {
    return Describer(record, meaning, declarations, description).describe(diagram);
}

}  // namespace tessera_host
