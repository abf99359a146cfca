#include "host/engine/sqlite/prepared_selections.h"

namespace tessera_host {
namespace {

// A prepared statement takes some kilobytes. A document with more queries than this prepares them again
// each time.
constexpr std::size_t maxWithStatements = 1'000;
// Selections under filters that no pane uses any more stay until there are this many.
constexpr std::size_t maxSelections = 20'000;

}  // namespace

PreparedSelection& PreparedSelections::find(const Selection& selection) {
    PreparedSelection& prepared = ensureEntry(selection);
    if (prepared.hasStatements() || prepared.isRejected()) return prepared;
    if (m_withStatements >= maxWithStatements) dropStatements();
    ++m_withStatements;
    return prepared;
}

PreparedSelection& PreparedSelections::ensureEntry(const Selection& selection) {
    if (const auto it = m_selections.find(selection); it != m_selections.end()) return *it->second;
    if (m_selections.size() >= maxSelections) clear();
    const auto it = m_selections.try_emplace(selection).first;
    it->second = std::make_unique<PreparedSelection>(it->first);
    return *it->second;
}

void PreparedSelections::dropStatements() {
    for (const auto& [selection, prepared] : m_selections)
        prepared->dropStatements();
    m_withStatements = 0;
}

void PreparedSelections::startSnapshot() {
    for (const auto& [selection, prepared] : m_selections)
        prepared->startSnapshot();
}

void PreparedSelections::clear() {
    m_selections.clear();
    m_withStatements = 0;
}

}  // namespace tessera_host
