#include "host/engine/sqlite/prepared_selections.h"

namespace tessera_host {
namespace {

// A prepared statement takes some kilobytes. A document whose statements exceed one of these limits prepares
// them again each time.
constexpr std::size_t maxWithStatements = 1'000;
constexpr std::size_t maxBytes = std::size_t{64} << 20U;
// Selections under filters that no pane uses any more stay until there are this many.
constexpr std::size_t maxSelections = 20'000;

}  // namespace

PreparedSelection& PreparedSelections::find(const Selection& selection) {
    PreparedSelection& prepared = ensureEntry(selection);
    if (prepared.hasStatements() || prepared.isRejected()) return prepared;
    // The caller makes the statements, so those of the last one are known only now.
    if (m_last != nullptr) m_bytes += m_last->bytes();
    if (m_withStatements >= maxWithStatements || m_bytes > maxBytes) dropStatements();
    ++m_withStatements;
    m_last = &prepared;
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
    m_bytes = 0;
    m_last = nullptr;
}

void PreparedSelections::startSnapshot() {
    for (const auto& [selection, prepared] : m_selections)
        prepared->startSnapshot();
}

void PreparedSelections::clear() {
    m_selections.clear();
    m_withStatements = 0;
    m_bytes = 0;
    m_last = nullptr;
}

}  // namespace tessera_host
