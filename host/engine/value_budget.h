// How many bytes the values of a request have.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tessera_host {

// One for each pane's engine; the counting begins anew with each snapshot. It counts copies: a value that was
// fetched once, and each cell that shows it, because the diagram keeps those up to three times (in the table, in
// the element and in the answer). Used by one thread at a time.
class ValueBudget {
  public:
    // `memory` is QueryLimits::memory; half of it is for values.
    explicit ValueBudget(std::uint64_t memory) : m_limit(memory / 2) {}

    // REQUIRES: called before the first value of a snapshot is taken.
    void startSnapshot(std::uint64_t number) {
        if (number == m_snapshot) return;
        m_snapshot = number;
        m_used = 0;
    }
    // Counts a value that is remembered; false, and counts nothing, when it is too much.
    [[nodiscard]] bool takeValue(std::size_t bytes) { return take(bytes); }
    // The same for a cell of the diagram.
    [[nodiscard]] bool takeCell(std::size_t bytes) { return take(cellCopies * bytes); }
    [[nodiscard]] std::uint64_t limit() const noexcept { return m_limit; }

  private:
    static constexpr std::uint64_t cellCopies = 3;

    bool take(std::uint64_t bytes) {
        if (bytes > m_limit - m_used) return false;
        m_used += bytes;
        return true;
    }

    const std::uint64_t m_limit;
    std::uint64_t m_snapshot = 0;
    std::uint64_t m_used = 0;  // never more than the limit
};

}  // namespace tessera_host
