#include "host/engine/cell_record.h"

#include <charconv>

namespace tessera_host {
namespace {

// Begins a tag. A text may have this character itself, so the last one counts.
constexpr char tagMark = '\x1F';

}  // namespace

CellRecord::Name CellRecord::nameOf(const ReferenceQuery& reference) {
    return {reference.declaration().index, reference.keyText()};
}

std::string CellRecord::tagged(const basekit2::sptr_t<ReferenceQuery>& reference, const std::string& text,
                               std::optional<double> number) {
    if (text.empty()) {
        if (const auto known = m_places.find(nameOf(*reference)); known != m_places.end())
            m_cells[known->second].text.clear();
        return {};
    }
    const auto [place, isNew] = m_places.try_emplace(nameOf(*reference), m_cells.size());
    if (isNew) m_cells.emplace_back();
    m_cells[place->second] = {reference, text, number};
    return text + tagMark + std::to_string(place->second);
}

CellRecord::Untagged CellRecord::untagged(std::string_view text) const {
    const std::size_t mark = text.rfind(tagMark);
    if (mark == std::string_view::npos) return {text, nullptr};
    std::size_t place = 0;
    const char* const textEnd = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data() + mark + 1, textEnd, place);
    if (error != std::errc() || end != textEnd || place >= m_cells.size()) return {text, nullptr};
    return {text.substr(0, mark), &m_cells[place]};
}

const RecordedCell* CellRecord::find(const ReferenceQuery& reference) const {
    const auto known = m_places.find(nameOf(reference));
    if (known == m_places.end() || m_cells[known->second].text.empty()) return nullptr;
    return &m_cells[known->second];
}

}  // namespace tessera_host
