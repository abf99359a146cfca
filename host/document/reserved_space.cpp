#include "host/document/reserved_space.h"

#include <algorithm>
#include <array>
#include <memory>
#include <unordered_map>
#include <utility>

namespace tessera_host {

using Index = DocumentStructure::Index;
using Range = DocumentStructure::Range;

constexpr Index none = DocumentStructure::none;

// Reads the structure of a viewpoint into a ReservedSpace.
class SpaceReader {
  public:
    SpaceReader(ReservedSpace& out, const optstore2::IMessageCatalogSource& source)
        : m_out(out), m_structure(out.m_viewpoint->structure()) {
        for (std::size_t i = 0; i < m_catalogs.size(); ++i)
            m_catalogs[i] = source.getCatalog(std::string(optstore2::catalogNames[i]));
    }

    void read() {
        m_out.m_rows.reserve(m_structure.rows().size());  // spans refer to them
        for (const auto& entry : m_structure.nodeEntries())
            if (entry.node != none && entry.replacedBy == none)
                m_out.m_nodes.push_back({entry.id, rowsOf(entry.rowSets)});
        // Labels of a replaced entry still count: labels are replaced one by one.
        for (const auto& entry : m_structure.linkEntries()) {
            if (entry.link == none) continue;
            for (Index label = entry.labels.begin; label < entry.labels.end; ++label)
                readLabel(entry.id, m_structure.labels()[label]);
        }
    }

  private:
    void readLabel(std::string_view link, const DocumentStructure::Label& label) {
        if (label.replacedBy != none) return;
        for (Index i = label.modes.begin; i < label.modes.end; ++i) {
            const auto& values = m_structure.modes()[i];
            if (values.replacedBy == none)
                m_out.m_labels.push_back({link, label.place, values.mode,
                                          localized(values.dataTransfer->get_text("displayName")),
                                          rowsOf(values.rowSets)});
        }
    }

    // Of several row sets the last one counts.
    ReservedSpace::Rows rowsOf(Range rowSets) {
        const std::size_t begin = m_out.m_rows.size();
        if (rowSets.begin < rowSets.end) {
            const Range rows = m_structure.rowSets()[rowSets.end - 1].rows;
            for (Index i = rows.begin; i < rows.end; ++i) {
                const auto& [element, reference] = m_structure.rows()[i];
                m_out.m_rows.push_back({localized(element->get_text("displayName")), queryOf(reference)});
            }
        }
        return {m_out.m_rows.data() + begin, m_out.m_rows.size() - begin};
    }

    const QueryDeclaration* queryOf(std::string_view reference) {
        const auto read = m_out.m_viewpoint->declarations()->parseReference(reference);
        return read ? read->declaration : nullptr;
    }

    // Looks each name up once.
    std::string_view localized(std::string_view key) {
        const auto [known, isNew] = m_localized.try_emplace(key, key);
        if (isNew)
            if (std::string text = messageOf(std::string(key)); !text.empty())
                known->second = m_out.m_names.emplace_back(std::move(text));
        return known->second;
    }

    // The first catalogue that has a text for the key decides; "" when none has.
    std::string messageOf(const std::string& key) {
        for (const auto& catalog : m_catalogs)
            if (std::string text = optstore2::textIn(catalog, key); !text.empty()) return text;
        return {};
    }

    ReservedSpace& m_out;
    const DocumentStructure& m_structure;
    std::array<std::shared_ptr<const RTBASE_2_18::i18n::catalog_t>, optstore2::catalogNames.size()>
        m_catalogs;
    std::unordered_map<std::string_view, std::string_view> m_localized;
};

ReservedSpace::ReservedSpace(Viewpoint::Pointer viewpoint, const optstore2::IMessageCatalogSource& source)
    : m_viewpoint(std::move(viewpoint)) {
    SpaceReader(*this, source).read();
}

// Of the usual length for the format. All digits have one width in the drawing's font, so any digit serves.
std::string typicalValue(const QueryDeclaration& query) {
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

}  // namespace tessera_host
