// A document and a database of any size.
#pragma once

#include <cstddef>
#include <string>

#include "bench/support/link_ends.h"

namespace tessera_bench {

struct InputCounts {
    std::size_t nodes = 0;
    std::size_t links = 0;
    std::size_t references = 0;
};

// Writes the viewpoint: nodes in groups of a hundred, and groups in groups of a hundred. Each hundred forms ten
// ranks of ten. A link joins members of one group, mostly of neighbouring ranks. One link in twenty joins members
// of two groups with the same parent; without groups, members of any two hundreds.
InputCounts writeDocument(const InputShape& shape, const std::string& path);

// Writes the database for the document's queries: a table with one row per node, a table with one row per link.
void writeDatabase(const InputCounts& counts, const std::string& path);

}  // namespace tessera_bench
