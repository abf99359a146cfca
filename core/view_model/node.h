// A box of the diagram, or a group box that contains others.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/export.h"
#include "core/view_model/display_info.h"
#include "platform/basekit2/error_code.h"

namespace tessera_1::view_model {

class GroupLevelManager;

// Owned by shared pointers, which form cycles; the graph breaks them when it is destroyed. Used by one thread
// at a time.
class TESSERA_EXPORT Node : public std::enable_shared_from_this<Node> {
  public:
    // A new node is not a member of a group, has no id and shows nothing; the graph does not know it until
    // addNode(). Types: "node" from a document; "label", "groupInfo" and "dummy" from the passes.
    Node();
    explicit Node(std::string type);
    // A label of a link, which takes over tables; the next is a node that shows `info`, which may be null.
    Node(std::string id, DataTransferTable dataTransfers, std::string type);
    Node(std::string id, std::shared_ptr<DisplayInfo> info, std::string type);

    // Records that a link leads from `parent` to `child`; once, however many links there are.
    static void addChildParent(const std::shared_ptr<Node>& child, const std::shared_ptr<Node>& parent);

    [[nodiscard]] const std::vector<std::shared_ptr<Node>>& getParents() const noexcept;
    [[nodiscard]] const std::vector<std::shared_ptr<Node>>& getChildren() const noexcept;
    [[nodiscard]] std::int32_t getHierarchicalLevel() const noexcept;
    // A node is a group through its members alone.
    [[nodiscard]] bool isGroup() const noexcept;

    // Joins `group` as its last member; a null group changes nothing. The false code, reported, when `group`
    // has no member yet. An earlier group keeps listing this node: remove it there first. REQUIRES: this node
    // is owned by a shared pointer.
    basekit2::error_code_t addToGroup(const std::shared_ptr<Node>& group);
    // Removes the first entry of `member` from this group's members; the member itself does not change.
    void removeFromGroup(const std::shared_ptr<Node>& member);

    // The layer inside the group; no layer manager is changed. A level below -1 is reported, and stored.
    void setHierarchicalLevel(std::int32_t level);
    // Gives the members of this group, and of the groups in it at any depth, their levels: one more than the
    // group's own, which the manager should know (0 when it does not).
    basekit2::error_code_t setGroupChildLevelGroup(GroupLevelManager& manager);

    // "from" and "to" set the aligning as well.
    void setLocation(const std::string& location);

    // Adds a child bag "node" to `nodes`.
    void dump(basekit2::variant_bag_t& nodes, std::string displayMode);
    // Writes what `table` shows in that mode into `info`; a mode that the table lacks gains an empty entry.
    void dumpDataTransfer(DataTransferTable& table, basekit2::variant_bag_t& info, std::string displayMode);

    std::string m_id;
    std::string m_type = "node";
    // Empty until the display section names it.
    std::string m_displayName;
    std::shared_ptr<Node> m_group;          // null at top level
    std::int32_t m_hierarchicalLevel = -1;  // layer inside the group; -1 when not levelled
    std::int32_t m_groupLevel = 0;          // nesting depth
    std::vector<std::shared_ptr<Node>> m_groupChildren;
    std::vector<std::shared_ptr<Node>> m_children;  // targets of links from here
    std::vector<std::shared_ptr<Node>> m_parents;   // sources of links to here
    // What the node itself shows; null for nothing. Shared with nothing else, except that a group's moves to
    // its "groupInfo" node.
    std::shared_ptr<DisplayInfo> m_info;
    // What a label shows, by display mode; empty on every other node.
    DataTransferTable m_dataTransfers;
    // Of a label: at which place of its link it is, "from", "center" or "to".
    std::string m_location;
    // Towards which end of its link a label is drawn: "from" or "to"; a document may set any word on a node.
    std::string m_aligning = "none";
    // The document's word for how it is drawn, passed on to the output. The layout knows "interface" only,
    // which has to be in the last layer of its group.
    std::string m_displayType = "none";
};

}  // namespace tessera_1::view_model
