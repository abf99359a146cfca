#include "host/engine/declared_query.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "host/values/cell_format.h"

namespace tessera_host {
namespace {

// Sorting rows into groups takes about as long as a dozen looks at all of them, so fewer references than
// this are not worth it; nor is work of a few milliseconds.
constexpr std::uint64_t minReferences = 16;
constexpr std::uint64_t minWork = 100'000;  // of Answer::work

bool isCancelled(const CellText& text) {
    return !text && text.error().isCancelled();
}

std::optional<double> numberOf(const CellValue& value) {
    if (const auto* integer = std::get_if<std::int64_t>(&value)) return static_cast<double>(*integer);
    if (const auto* real = std::get_if<double>(&value)) return *real;
    return std::nullopt;
}

}  // namespace

Error tooManyValues(const ValueBudget& budget) {
    constexpr CellFormat binary{CellFormat::Kind::binary, 3};
    return {ErrorKind::failed, "the values of this request need more than " +
                                   formatCell(static_cast<std::int64_t>(budget.limit()), binary, "B") +
                                   " of memory, half of what a request may take"};
}

const Cell& DeclaredQuery::value(const ReferenceQuery& reference, const RunPlace& place) {
    if (place.snapshotNumber != m_snapshotNumber) startSnapshot(place.snapshotNumber);
    const auto known = m_values.find(reference.keyText());
    if (known != m_values.end()) return known->second;
    if (std::uint64_t cost = 0; isWorthGrouping(reference, cost)) {
        m_isGroupingTried = true;
        if (auto done = queryTogether(reference, place, cost); !done)
            return m_cancelled.emplace(Cell{std::move(done).error(), {}});
        const auto grouped = m_values.find(reference.keyText());
        if (grouped != m_values.end()) return grouped->second;
    }
    Cell cell = queryOne(reference, place);
    // Not remembered as the value: the next request tries again.
    if (isCancelled(cell.text)) return m_cancelled.emplace(std::move(cell));
    return remember(reference.keyText(), std::move(cell), place.budget);
}

const Cell& DeclaredQuery::remember(const KeyText& name, Cell cell, ValueBudget& budget) {
    if (cell.text && !budget.takeValue(cell.text->size())) {
        m_isTooLarge = true;
        cell = {tooManyValues(budget), {}};
    }
    return m_values.emplace(name, std::move(cell)).first->second;
}

void DeclaredQuery::startSnapshot(std::uint64_t snapshotNumber) {
    m_snapshotNumber = snapshotNumber;
    m_values.clear();
    m_isGroupingTried = false;
    m_isTooLarge = false;
    m_singleRuns = 0;
    m_singleWork = 0;
}

bool DeclaredQuery::claimReport(std::uint64_t snapshotNumber) {
    return std::exchange(m_reportedSnapshot, snapshotNumber) != snapshotNumber;
}

bool DeclaredQuery::isWorthGrouping(const ReferenceQuery& reference, std::uint64_t& cost) const {
    if (m_isGroupingTried || m_query.keys.empty() || m_singleRuns == 0) return false;
    const std::uint64_t known = reference.siblings().size();
    const std::uint64_t remaining = known - std::min<std::uint64_t>(known, m_values.size());
    // What the remaining references cost one by one, at the mean of those so far. Also grouping's limit.
    cost = remaining * (m_singleWork / m_singleRuns);
    return remaining >= minReferences && cost >= minWork;
}

Expected<void> DeclaredQuery::queryTogether(const ReferenceQuery& reference, const RunPlace& place,
                                            std::uint64_t maxWork) {
    std::vector<Question> questions;
    std::vector<const KeyText*> names;
    for (const auto& [name, keys] : reference.siblings()) {
        if (m_values.contains(name)) continue;
        questions.push_back({&m_selection, &keys});
        names.push_back(&name);
    }
    auto values = place.snapshot.answerTogether(questions, maxWork, place.options);
    if (!values) return std::move(values).error();
    m_values.reserve(m_values.size() + names.size());
    for (std::size_t i = 0; i < names.size(); ++i)
        if (const auto& value = (*values)[i]) remember(*names[i], cellOf(*value), place.budget);
    return {};
}

Cell DeclaredQuery::queryOne(const ReferenceQuery& reference, const RunPlace& place) {
    if (m_isTooLarge) return {tooManyValues(place.budget), {}};
    auto answer = place.snapshot.answer({&m_selection, &reference.keys()}, place.options);
    if (!answer) return {std::move(answer).error(), {}};
    ++m_singleRuns;
    m_singleWork += answer->work;
    return cellOf(answer->value);
}

Cell DeclaredQuery::cellOf(const CellValue& value) const {
    return {formatCell(value, m_query.format, m_query.unit), numberOf(value)};
}

}  // namespace tessera_host
