#include "host/meaning/value_change.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <limits>
#include <tuple>

#include "host/values/cell_format.h"

namespace tessera_host {
namespace {

constexpr std::array<std::string_view, 6> names{"same", "more", "less", "text", "here", "there"};

// For sorting: from the largest kind of change on.
int classOf(const ValueChange& change) {
    switch (change.kind) {
        case ChangeKind::here:
        case ChangeKind::there:
            return 0;
        case ChangeKind::more:
        case ChangeKind::less:
            return change.relative ? 2 : 1;
        case ChangeKind::text:
            return 3;
        case ChangeKind::same:
            break;
    }
    return 4;
}

}  // namespace

std::string_view nameOf(ChangeKind kind) noexcept {
    return names[static_cast<std::size_t>(kind)];
}

std::string numberText(double number, const QueryDeclaration& query) {
    constexpr double exact = 9007199254740992;  // 2^53
    const bool isWhole = std::abs(number) < exact && std::trunc(number) == number;
    const CellValue value = isWhole ? CellValue(static_cast<std::int64_t>(number)) : CellValue(number);
    return formatCell(value, query.format, query.unit);
}

std::string ValueChange::percent() const {
    if (!relative) return {};
    constexpr double inPercent = 100;
    const double value = *relative * inPercent;
    const double size = std::abs(value);
    if (size >= 1e6) return fmt::format("{:+.3g} %", value);
    if (size >= 100) return fmt::format("{:+.0f} %", value);
    return size >= 0.1 ? fmt::format("{:+.1f} %", value) : fmt::format("{:+.2g} %", value);
}

bool ValueChange::isLargerThan(const ValueChange& other) const {
    return std::tuple(-classOf(*this), std::abs(relative.value_or(0)), absolute) >
           std::tuple(-classOf(other), std::abs(other.relative.value_or(0)), other.absolute);
}

ValueChange changeOf(const RecordedCell* here, const RecordedCell* there) {
    ValueChange change;
    if (here == nullptr || there == nullptr) {
        change.kind = here == nullptr ? ChangeKind::there : ChangeKind::here;
        return change;
    }
    if (!here->number || !there->number) {
        change.kind = here->text == there->text ? ChangeKind::same : ChangeKind::text;
        return change;
    }
    const double now = *here->number;
    const double before = *there->number;
    // Infinities and NaN have no difference.
    const double difference = now - before;
    if (now == before || std::isnan(difference)) {
        change.kind = here->text == there->text ? ChangeKind::same : ChangeKind::text;
        return change;
    }
    change.kind = difference > 0 ? ChangeKind::more : ChangeKind::less;
    change.absolute = std::abs(difference);
    change.difference = (difference > 0 ? "+" : "") + numberText(difference, here->reference->declaration());
    if (const double relative = difference / std::abs(before); std::isfinite(relative))
        change.relative = relative;
    return change;
}

}  // namespace tessera_host
