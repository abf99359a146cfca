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

// Writes the viewpoint: nodes in groups of a hundred, groups in groups of a hundred. A hundred stand in ten
// ranks of ten; a link joins members of one group, mostly of neighbouring ranks, and in one of twenty cases
// members of two groups that stand side by side. Without groups that one goes to any hundred.
InputCounts writeDocument(const InputShape& shape, const std::string& path);

// Writes the database that the document's queries ask: one table with a row a node, one with a row a link.
void writeDatabase(const InputCounts& counts, const std::string& path);

}  // namespace tessera_bench
