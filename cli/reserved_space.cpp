#include "cli/reserved_space.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "draw/text_width.h"
#include "host/document/reserved_space.h"

namespace tessera_cli {
namespace {

using tessera_draw::Reservation;
using tessera_draw::RowSpace;
using tessera_draw::Weight;
using tessera_host::LabelPlace;
using tessera_host::QueryDeclaration;

Reservation::Place placeOf(LabelPlace place) {
    switch (place) {
        case LabelPlace::from:
            return Reservation::Place::from;
        case LabelPlace::to:
            return Reservation::Place::to;
        case LabelPlace::center:
            break;
    }
    return Reservation::Place::center;
}

// Measures each name and each query once.
class Measure {
  public:
    [[nodiscard]] RowSpace rows(tessera_host::ReservedSpace::Rows rows) {
        RowSpace space;
        space.rows = static_cast<std::uint32_t>(rows.size());
        for (const auto& [name, query] : rows) {
            space.nameWidth = std::max(space.nameWidth, nameWidth(name));
            space.valueWidth = std::max(space.valueWidth, valueWidth(query));
        }
        return space;
    }

    [[nodiscard]] double nameWidth(std::string_view name) {
        const auto [known, isNew] = m_names.try_emplace(name, 0);
        if (isNew) known->second = tessera_draw::measureText(name, 1, Weight::regular).width;
        return known->second;
    }

  private:
    [[nodiscard]] double valueWidth(const QueryDeclaration* query) {
        // A row whose reference is wrong never has a value.
        if (query == nullptr) return 0;
        const auto [known, isNew] = m_values.try_emplace(query, 0);
        if (isNew)
            known->second =
                tessera_draw::measureText(tessera_host::typicalValue(*query), 1, Weight::bold).width;
        return known->second;
    }

    // Widths in em. The names are those of the ReservedSpace, which lives longer than the Measure.
    std::unordered_map<std::string_view, double> m_names;
    std::unordered_map<const QueryDeclaration*, double> m_values;
};

}  // namespace

Reservation measureReservedSpace(const Input& input, bool hasChanges) {
    const tessera_host::ReservedSpace space(input.viewpoint, *input.catalogs);
    Reservation reservation;
    Measure measure;
    // The badge shows any of the modes, so the widest decides.
    double modeWidth = 0;
    for (const std::string_view mode : tessera_host::displayModeNames)
        modeWidth = std::max(modeWidth, tessera_draw::measureText(mode, 1, Weight::bold).width);
    reservation.setModeWidth(modeWidth);
    reservation.setHasChanges(hasChanges);
    for (const auto& node : space.nodes())
        reservation.node(node.id).widen(measure.rows(node.rows));
    // As much as the widest of the display modes needs.
    for (const auto& label : space.labels()) {
        RowSpace& rowSpace = reservation.link(label.link, placeOf(label.place));
        rowSpace.titleWidth = std::max(rowSpace.titleWidth, measure.nameWidth(label.title));
        rowSpace.widen(measure.rows(label.rows));
    }
    return reservation;
}

}  // namespace tessera_cli
