// A document and a database of any size.
#pragma once

#include <cstddef>
#include <string>

namespace tessera_bench {

struct InputShape {
    std::size_t nodes = 100'000;
    double linksPerNode = 1.5;
    double nodesWithValues = 0.1;  // share that shows a row set of two rows
    double linksWithLabels = 0.3;  // share with a label
    bool isFlat = false;           // no groups
    bool isTangled = false;        // links inside a group join any two members
    bool allLocations = false;     // labels at both ends as well as at the centre
    std::size_t modes = 1;         // how many display modes each label has values for, up to 3
    unsigned seed = 1;
};

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
