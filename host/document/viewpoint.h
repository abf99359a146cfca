// A viewpoint document, read once.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/document/declarations.h"
#include "host/document/document_structure.h"
#include "host/document/problem.h"
#include "host/document/value_meaning.h"
#include "host/error.h"
#include "platform/basekit2/variant_bag.h"
#include "support/cancel_token.h"

namespace tessera_host {

// Everything that a document says: its bag with positions, its queries and filters, its nodes, links and what
// they show, and what was wrong with it. A viewpoint never changes, so any number of panes and threads share
// one by `std::shared_ptr<const Viewpoint>`. What changes a document, such as the reversal of links, makes a
// new viewpoint. References and string views that it returns are valid as long as it is alive.
class Viewpoint {
    struct Private {};  // only the functions below make one

  public:
    using Pointer = std::shared_ptr<const Viewpoint>;

    // Reads the XML document in the file `path`; the path becomes the name of the viewpoint. The error has
    // the kind cannotOpen when the file cannot be read, failed with the position when it is not a well-formed
    // document, cancelled when `token` is cancelled. The pointer is never null.
    [[nodiscard]] static Expected<Pointer> readFile(const std::string& path,
                                                    const tessera_support::CancelToken& token);

    // The same for a document that the caller has as text, which is not kept. `name` is what messages call
    // it.
    [[nodiscard]] static Expected<Pointer> readText(std::string_view text, std::string name,
                                                    const tessera_support::CancelToken& token);

    // The same for a document that is a bag already. Fails only when it is cancelled.
    [[nodiscard]] static Expected<Pointer> fromBag(basekit2::variant_bag_t bag, std::string name,
                                                   const tessera_support::CancelToken& token);

    Viewpoint(Private, basekit2::variant_bag_t bag, std::string name,
              const tessera_support::CancelToken& token);
    Viewpoint(const Viewpoint&) = delete;
    Viewpoint& operator=(const Viewpoint&) = delete;

    // What messages call the document: the path of its file, if it has one.
    [[nodiscard]] const std::string& name() const noexcept { return m_name; }
    // The document as the diagram library reads it. Each bag has the position of its start tag.
    [[nodiscard]] const basekit2::variant_bag_t& bag() const noexcept { return m_bag; }
    // Nodes, links and display entries as flat lists, for checks and for measuring.
    [[nodiscard]] const DocumentStructure& structure() const noexcept { return m_structure; }
    // Never null. Does not refer to the viewpoint: it may be kept longer.
    [[nodiscard]] const std::shared_ptr<const Declarations>& declarations() const noexcept {
        return m_declarations;
    }
    // The document's own filters; a pane may replace them for itself.
    [[nodiscard]] const Filters& filters() const noexcept { return m_declarations->filters(); }
    // Its levels and widths. Their queries are those of declarations().
    [[nodiscard]] const ValueMeaning& meaning() const noexcept { return m_meaning; }
    // Which declarations, levels and widths could not be read as they are written; who opens a document posts
    // them to the user. `checkDocument` finds much more.
    [[nodiscard]] const std::vector<Problem>& problems() const noexcept { return m_problems; }

  private:
    const basekit2::variant_bag_t m_bag;
    const std::string m_name;
    const DocumentStructure m_structure;  // refers to the bag
    const std::shared_ptr<const Declarations> m_declarations;
    const ValueMeaning m_meaning;
    const std::vector<Problem> m_problems;
};

}  // namespace tessera_host
