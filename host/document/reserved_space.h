// What rows the boxes of a drawing must have space for.
#pragma once

#include <cstddef>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/document/viewpoint.h"
#include "platform/optstore2/message_catalog_source.h"

namespace tessera_host {

// A row that may show a value later.
struct ReservedRow {
    std::string_view name;  // as the diagram shows it: translated by the catalogues
    // How its values are written; null when the row refers to no declared query and never shows one.
    const QueryDeclaration* query;
};

// Every row that the diagram of a viewpoint can show, in all display modes, whether or not it has a value at
// the moment. A drawing that keeps space for all of them does not move when values or the mode change. Rows
// that the library never shows, because a later entry replaces theirs, are left out.
//
// A host makes one for each viewpoint and language, and measures its names in the font of its drawings. Keeps
// the viewpoint alive. Does not change once made, so any thread may use it; spans and views that it returns
// are valid as long as it.
class ReservedSpace {
  public:
    using Rows = std::span<const ReservedRow>;

    struct Node {
        std::string_view id;
        Rows rows;
    };
    // The values of a label in one display mode.
    struct Label {
        std::string_view link;  // its id
        LabelPlace place;
        DisplayMode mode;
        std::string_view title;  // the name of its <dataTransfer>, looked up in the catalogues
        Rows rows;
    };

    // Looks names up in the catalogues of `source`, in the order and by the rules of the library; `source` is
    // used during the call only. Linear time.
    ReservedSpace(Viewpoint::Pointer viewpoint, const optstore2::IMessageCatalogSource& source);
    ReservedSpace(const ReservedSpace&) = delete;
    ReservedSpace& operator=(const ReservedSpace&) = delete;

    // Nodes and groups, and labels, in the order of the document. An id may occur more than once.
    [[nodiscard]] const std::vector<Node>& nodes() const noexcept { return m_nodes; }
    [[nodiscard]] const std::vector<Label>& labels() const noexcept { return m_labels; }

  private:
    friend class SpaceReader;

    const Viewpoint::Pointer m_viewpoint;
    std::deque<std::string> m_names;  // those that came out of catalogues
    std::vector<ReservedRow> m_rows;
    std::vector<Node> m_nodes;
    std::vector<Label> m_labels;
};

// A text about as wide as the values of the query become, with their unit. An estimate from the query's
// format: no value is looked at, and a wider one has to be shortened.
[[nodiscard]] std::string typicalValue(const QueryDeclaration& query);

}  // namespace tessera_host
