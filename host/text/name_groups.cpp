#include "host/text/name_groups.h"

#include <algorithm>
#include <utility>

namespace tessera_host {
namespace {

// Up to so many names, comparing with each of them beats a hash table.
constexpr std::size_t maxUnindexedNames = 8;

}  // namespace

void NameGroups::append(const basekit2::variant_bag_t& bag, std::vector<NamedBag>& all) {
    const std::size_t begin = all.size();
    std::size_t runs = 0;
    for (auto it = bag.begin(); !it.at_end(); it.next()) {
        if (all.size() == begin || it.get_name() != all.back().name) ++runs;
        all.push_back({it.get_name(), &it.get_value()});
    }
    if (runs <= 2) return;  // a name cannot come back after one other

    m_names.clear();
    // Not clear(): it would visit all the buckets that the widest bag so far needed.
    if (!m_index.empty()) m_index = std::unordered_map<std::string_view, std::uint32_t>();
    m_groups.clear();
    for (std::size_t i = begin; i < all.size(); ++i) {
        const bool continues = i > begin && all[i].name == all[i - 1].name;
        m_groups.push_back(continues ? m_groups.back() : groupOf(all[i].name));
    }
    if (m_names.size() < runs) sortFrom(begin, all);
}

std::uint32_t NameGroups::groupOf(std::string_view name) {
    const auto next = static_cast<std::uint32_t>(m_names.size());
    if (m_index.empty()) {
        const auto known = std::find(m_names.begin(), m_names.end(), name);
        if (known != m_names.end()) return static_cast<std::uint32_t>(known - m_names.begin());
        if (m_names.size() == maxUnindexedNames)
            for (std::uint32_t i = 0; i < next; ++i)
                m_index.emplace(m_names[i], i);
    }
    if (!m_index.empty()) {
        const auto [known, isNew] = m_index.emplace(name, next);
        if (!isNew) return known->second;
    }
    m_names.push_back(name);
    return next;
}

// Sorts by group number without comparing: count, then place.
void NameGroups::sortFrom(std::size_t begin, std::vector<NamedBag>& all) {
    m_places.assign(m_names.size(), 0);
    for (const std::uint32_t group : m_groups)
        ++m_places[group];
    std::size_t place = begin;
    for (std::size_t& count : m_places)
        place += std::exchange(count, place);
    m_copy.assign(all.begin() + static_cast<std::ptrdiff_t>(begin), all.end());
    for (std::size_t i = 0; i < m_copy.size(); ++i)
        all[m_places[m_groups[i]]++] = m_copy[i];
}

}  // namespace tessera_host
