#include "cli/reserved_room.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "draw/text_width.h"
#include "platform/optstore2/message_catalog_source.h"

namespace tessera_cli {
namespace {

using basekit2::variant_bag_t;
using tessera_draw::Reservation;
using tessera_draw::Room;
using tessera_draw::Weight;
using tessera_host::CellFormat;
using tessera_host::QueryDeclaration;

std::string_view textOf(const variant_bag_t& element, std::string_view name) {
    const auto* value = element.get(name);
    return value != nullptr && value->can_get<std::string_view>() ? value->get<std::string_view>()
                                                                  : std::string_view{};
}

// A value about as wide as the query's values become.
std::string sampleOf(const QueryDeclaration& query) {
    const auto digits = [](int count) {
        return std::string(static_cast<std::size_t>(std::max(count, 0)), '8');
    };
    const CellFormat& format = query.format;
    const std::string unit = query.unit.empty() ? "" : " " + query.unit;
    switch (format.kind) {
        case CellFormat::Kind::plain:
            return digits(6) + unit;
        case CellFormat::Kind::fixed:
            return digits(4) + "." + digits(format.digits) + unit;
        case CellFormat::Kind::si:
            return digits(std::max(format.digits, 3)) + ". M" + query.unit;
        case CellFormat::Kind::binary:
            return digits(std::max(format.digits, 4)) + ". Mi" + query.unit;
        case CellFormat::Kind::percent:
            return digits(3) + "." + digits(format.digits) + " %" + (query.unit == "%" ? "" : unit);
        case CellFormat::Kind::duration:
            return digits(2) + " min " + digits(2) + " s" + (query.unit == "s" ? "" : unit);
    }
    return {};
}

class RoomReader {
  public:
    explicit RoomReader(const tessera_host::Declarations& declarations) : m_declarations(declarations) {}

    void readDisplay(const variant_bag_t& display) {
        for (auto child = display.begin(); !child.at_end(); child.next()) {
            const variant_bag_t& element = child.get_value();
            if (child.get_name() == "node") m_answer.node(textOf(element, "id")) = roomOfInfo(element);
            if (child.get_name() == "link") readLink(element);
        }
    }

    Reservation take() { return std::move(m_answer); }

  private:
    // A later label of one place takes the earlier one's, as the library reads it.
    void readLink(const variant_bag_t& element) {
        for (auto child = element.begin(); !child.at_end(); child.next()) {
            if (child.get_name() != "label") continue;
            const std::string_view location = textOf(child.get_value(), "location");
            const auto place = location == "from" ? Reservation::Place::from
                               : location == "to" ? Reservation::Place::to
                                                  : Reservation::Place::center;
            m_answer.link(textOf(element, "id"), place) = roomOfLabel(child.get_value());
        }
    }

    // As much as the widest of the display modes needs.
    Room roomOfLabel(const variant_bag_t& label) {
        Room room;
        for (auto transfer = label.begin(); !transfer.at_end(); transfer.next()) {
            if (transfer.get_name() != "dataTransfer") continue;
            room.titleWidth = std::max(room.titleWidth, nameWidth(transfer.get_value()));
            for (auto mode = transfer.get_value().begin(); !mode.at_end(); mode.next())
                room.widen(roomOfInfo(mode.get_value()));
        }
        return room;
    }

    // Of several row sets, the last counts.
    Room roomOfInfo(const variant_bag_t& element) {
        const variant_bag_t* rowSet = nullptr;
        for (auto child = element.begin(); !child.at_end(); child.next())
            if (child.get_name() == "rowSet") rowSet = &child.get_value();
        return rowSet == nullptr ? Room{} : roomOfRows(*rowSet);
    }

    Room roomOfRows(const variant_bag_t& rowSet) {
        Room room;
        for (auto child = rowSet.begin(); !child.at_end(); child.next()) {
            if (child.get_name() != "queryRef") continue;
            ++room.rows;
            room.nameWidth = std::max(room.nameWidth, nameWidth(child.get_value()));
            room.valueWidth = std::max(room.valueWidth, valueWidth(textOf(child.get_value(), "")));
        }
        return room;
    }

    double nameWidth(const variant_bag_t& element) {
        const std::string name = localized(std::string(textOf(element, "displayName")));
        return tessera_draw::measureText(name, 1, Weight::regular).width;
    }

    // The library's own look-up: three catalogues in this order, or else the text itself.
    std::string localized(const std::string& key) {
        for (const auto& catalog : m_catalogs) {
            if (!catalog || !catalog->has_message(key)) continue;
            std::string text = catalog->message(key).as_ustring({}).c_str();
            if (!text.empty()) return text;
        }
        return key;
    }

    double valueWidth(std::string_view reference) {
        std::string ignored;
        const auto read = m_declarations.parseReference(reference, ignored);
        if (!read || read->declaration == nullptr) return 0;
        const auto [place, isNew] = m_widths.emplace(read->declaration, 0);
        if (isNew)
            place->second = tessera_draw::measureText(sampleOf(*read->declaration), 1, Weight::bold).width;
        return place->second;
    }

    using Catalog = std::shared_ptr<const RTBASE_2_18::i18n::catalog_t>;
    static std::array<Catalog, 3> catalogs() {
        const auto source = optstore2::getMessageCatalogSource();
        return {source->getCatalog("slicer2"), source->getCatalog("viewpoint"),
                source->getCatalog("storeiface1")};
    }

    const tessera_host::Declarations& m_declarations;
    std::array<Catalog, 3> m_catalogs = catalogs();
    std::unordered_map<const QueryDeclaration*, double> m_widths;
    Reservation m_answer;
};

}  // namespace

Reservation reserveRoom(const variant_bag_t& viewpoint, const tessera_host::Declarations& declarations) {
    RoomReader reader(declarations);
    for (auto diagram = viewpoint.begin(); !diagram.at_end(); diagram.next()) {
        if (diagram.get_name() != "diagram") continue;
        for (auto section = diagram.get_value().begin(); !section.at_end(); section.next())
            if (section.get_name() == "display") reader.readDisplay(section.get_value());
    }
    return reader.take();
}

}  // namespace tessera_cli
