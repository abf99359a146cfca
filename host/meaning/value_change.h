// How a value differs from the same value of another result.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/engine/cell_record.h"

namespace tessera_host {

enum class ChangeKind : std::uint8_t {
    same,
    more,
    less,
    text,   // a text that is another one
    here,   // the other result does not have the value
    there,  // only the other result has it
};

// "same", "more", ... as in the enumeration.
[[nodiscard]] std::string_view nameOf(ChangeKind kind) noexcept;

struct ValueChange {
    ChangeKind kind = ChangeKind::same;
    std::string
        difference;  // with its sign, as values of the query are written; "" where there are no two numbers
    double absolute = 0;             // its size
    std::optional<double> relative;  // in relation to the other value's size; none where that is 0 or missing

    // "+12.3 %", "+250 %", or "" where there is no relative difference.
    [[nodiscard]] std::string percent() const;
    // Larger changes come first: values that one result lacks, changes from 0, then by the relative and by the
    // absolute difference; texts come last.
    [[nodiscard]] bool isLargerThan(const ValueChange& other) const;
};

// REQUIRES: at least one of the two is not null. `there` is the value of the other result.
[[nodiscard]] ValueChange changeOf(const RecordedCell* here, const RecordedCell* there);

// A number as the values of the query are written; whole numbers as integers, which the plain format keeps as they are.
[[nodiscard]] std::string numberText(double number, const QueryDeclaration& query);

}  // namespace tessera_host
