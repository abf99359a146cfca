// The levels of values.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/document/value_meaning.h"
#include "host/engine/reference_query.h"

namespace tessera_host {

// Finds the first rule that holds for a value without trying all of them. Unchanging; any thread.
class LevelFinder {
  public:
    // `meaning` must outlive the finder. n log n time at most.
    explicit LevelFinder(const ValueMeaning& meaning);

    // The first rule that holds for this value of the reference, or null. Logarithmic time.
    [[nodiscard]] const LevelRule* find(const ReferenceQuery& reference, double number) const;

  private:
    // Rules by index, in the order of the document. Of two "above", the later one only counts with a lower
    // bound, and of two "below" with a higher one; the others are left out. So bounds are in order.
    struct Bounds {
        std::vector<std::size_t> above;
        std::vector<std::size_t> below;
    };
    using ByKeys = std::unordered_map<KeyText, Bounds>;

    void add(Bounds& bounds, std::size_t rule) const;
    [[nodiscard]] std::size_t firstIn(const Bounds& bounds, double number) const;

    const ValueMeaning& m_meaning;
    std::unordered_map<std::size_t, Bounds> m_ofQuery;  // rules without keys, by the declaration's index
    std::unordered_map<std::size_t, ByKeys> m_ofReference;
};

}  // namespace tessera_host
