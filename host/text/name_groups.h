// Puts the child bags of a bag into groups of one name each.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

struct NamedBag {
    std::string_view name;
    const basekit2::variant_bag_t* bag = nullptr;
};

// Kept by a writer for all bags, so that its memory is used again.
class NameGroups {
  public:
    // Appends the children of `bag` to `all` so that those of one name stand together: the groups in the
    // order in which their names first appear, the bags of a group in theirs. Time grows with their number.
    void append(const basekit2::variant_bag_t& bag, std::vector<NamedBag>& all);

  private:
    std::uint32_t groupOf(std::string_view name);
    void sortFrom(std::size_t begin, std::vector<NamedBag>& all);

    std::vector<std::string_view> m_names;  // of the groups
    std::unordered_map<std::string_view, std::uint32_t> m_index;
    std::vector<std::uint32_t> m_groups;  // of each child
    std::vector<std::size_t> m_places;    // for each group, where its next child goes
    std::vector<NamedBag> m_copy;
};

}  // namespace tessera_host
