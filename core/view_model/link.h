// An arrow between two nodes.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/export.h"
#include "core/view_model/display_info.h"
#include "core/view_model/node.h"

namespace tessera_1::view_model {

// Used by one thread at a time.
class TESSERA_EXPORT Link {
  public:
    // A new link has no ends and shows nothing; the graph does not know it until addLink().
    Link();
    explicit Link(std::string id);
    Link(std::string id, std::string type);

    // Appends every display info of `table`, empty entries included, in the table's order.
    void getDataTransferDisplayInfos(const DataTransferTable& table,
                                     std::vector<std::shared_ptr<DisplayInfo>>& out) const;
    // Appends those of the from end, the to end and the total.
    void getDisplayInfos(std::vector<std::shared_ptr<DisplayInfo>>& out) const;

    // The ends, each lifted to the innermost group that contains both (or to top level): the ends themselves
    // or the groups that hold them. The ends as they are when one is missing. Takes time in proportion to the
    // nesting depth.
    [[nodiscard]] std::pair<std::shared_ptr<Node>, std::shared_ptr<Node>> getFromToBelongToTheSameGroup()
        const;
    // The group of those two; null at top level or when an end is missing.
    [[nodiscard]] std::shared_ptr<Node> getGroup() const;

    // Adds a child bag "link" to `links`.
    void dump(basekit2::variant_bag_t& links, std::string displayMode);
    // Writes what `table` shows in that mode into `info`; a mode that the table lacks gains an empty entry.
    void dumpDataTransfer(DataTransferTable& table, basekit2::variant_bag_t& info, std::string displayMode);

    std::string m_id;
    std::string m_type = "link";
    // Empty until the display section names it.
    std::string m_displayName;
    // The ends; null when the document names a node that does not exist. Such a link takes part in no pass.
    std::shared_ptr<Node> m_from;
    std::shared_ptr<Node> m_to;
    std::shared_ptr<Link> m_realLink;   // on a dummy link: the link that it represents
    std::shared_ptr<Link> m_dummyLink;  // on a real link: the dummy link that represents it
    // Where arrow heads are: "none", "forward" (at the to end), "back" or "both"; "" when the document gives
    // none.
    std::string m_direction = "none";
    // Values at the from end, the to end and the centre; a pass moves those that are shown to "label" nodes.
    LinkDisplayInfo m_displayInfo;
};

}  // namespace tessera_1::view_model
