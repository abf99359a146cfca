// Which nodes the links of a generated diagram join.
#pragma once

#include <cstddef>
#include <random>
#include <utility>

namespace tessera_bench {

inline constexpr std::size_t groupSize = 100;

struct InputShape {
    std::size_t nodes = 100'000;  // at least 2
    double linksPerNode = 1.5;
    double nodesWithValues = 0.1;  // share that shows a row set of two rows
    double linksWithLabels = 0.3;  // share with a label
    bool isFlat = false;           // no groups
    bool isTangled = false;        // links inside a group join any two members
    bool allLocations = false;     // labels at both ends as well as at the centre
    std::size_t modes = 1;         // how many display modes each label has values for, up to 3
    unsigned seed = 1;
};

// Ends of random links without cycles.
class LinkEnds {
  public:
    explicit LinkEnds(const InputShape& shape) : m_shape(shape), m_random(shape.seed) {}

    using Ends = std::pair<std::size_t, std::size_t>;

    Ends next() {
        const bool hasRanks = m_shape.nodes > rankSize;
        return m_shape.isTangled || !hasRanks ? nextTangled() : nextBetweenRanks();
    }

  private:
    static constexpr std::size_t rankSize = 10;

    std::size_t below(std::size_t n) { return m_random() % n; }
    Ends nextTangled();
    Ends nextBetweenRanks();

    const InputShape& m_shape;
    std::mt19937 m_random;
    std::size_t m_nextTo = 0;
};

}  // namespace tessera_bench
