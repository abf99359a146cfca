// A document and a database of any size.
#pragma once

#include <cstddef>
#include <string>

namespace tessera_bench {

struct InputShape {
    std::size_t nodes = 100'000;
    double linksPerNode = 1.5;
    double nodesWithValues = 0.1;  // share that shows a row set of two rows
    double linksWithLabels = 0.3;  // share with a label at the centre
    std::size_t modes = 1;         // how many display modes each label has values for, up to 3
    unsigned seed = 1;
};

struct InputCounts {
    std::size_t nodes = 0;
    std::size_t links = 0;
    std::size_t references = 0;
};

// Writes the viewpoint: nodes in groups of a hundred, groups in groups of a hundred, links mostly inside a
// group.
InputCounts writeDocument(const InputShape& shape, const std::string& path);

// Writes the database that the document's queries ask: one table with a row a node, one with a row a link.
void writeDatabase(const InputCounts& counts, const std::string& path);

}  // namespace tessera_bench
