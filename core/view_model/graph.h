// The diagram: all nodes and links, and what the layout knows of them.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/export.h"
#include "core/view_model/hierarchical_level_manager.h"
#include "core/view_model/id_map.h"
#include "core/view_model/link.h"
#include "core/view_model/node.h"
#include "core/vocabulary.h"

namespace tessera_1::view_model {

// Owns nodes and links. Used by one thread at a time.
class TESSERA_EXPORT Graph {
  public:
    Graph();
    Graph(const Graph&) = delete;
    Graph& operator=(const Graph&) = delete;
    // Clears the references between nodes and links, so that all of them are destroyed with the graph, at any
    // nesting depth.
    ~Graph();

    // Sets the entry of the object's id to it, and appends it to its list. An earlier object of that id stays
    // in the list only.
    void addNode(std::shared_ptr<Node> node);
    void addLink(std::shared_ptr<Link> link);

    // The object in the entry of `id`, or null. Constant time.
    [[nodiscard]] std::shared_ptr<Node> findNode(const std::string& id) const;
    [[nodiscard]] std::shared_ptr<Link> findLink(const std::string& id) const;

    // Rebuilds the children and parents of the nodes in m_nodes from m_linkList. Links with a missing end
    // take no part. Called by each pass that reads these lists, since the passes before it may have added links.
    void setChildrenAndParents();
    // Fills m_groups from m_nodeList.
    void collectGroups();
    // Clears `out` and fills it with the display infos of all nodes, then of all links; no null entries.
    void getDisplayInfos(std::vector<std::shared_ptr<DisplayInfo>>& out) const;

    // The layout passes, each described in the file of its name in passes/; in this order, once a diagram.
    basekit2::error_code_t setLinkInfoAsNodes();
    basekit2::error_code_t setGroupInfoAsNodes();
    void createDummyLinksForGroups();
    basekit2::error_code_t calculateHierarchicalLevels();
    basekit2::error_code_t addDummyNodesForLabels();
    basekit2::error_code_t addDummyNodesForInterfaces();
    basekit2::error_code_t adjustLabelLocations();
    void setNodeAlignings();
    basekit2::error_code_t setGroupLevels();

    // What the passes are composed of.
    using NodeAndLink = std::pair<std::shared_ptr<Node>, std::shared_ptr<Link>>;
    // Splits the link by a new node of this type: the link then ends at the new node, and a new link leads from
    // there to its old end. Returns the two. Returns two null pointers, and changes nothing, when an end of the
    // link is missing, or when `transfers` shows nothing in the graph's display mode and the type is not "dummy".
    NodeAndLink insertNode(const std::shared_ptr<Link>& link, DataTransferTable transfers,
                           const std::string& type);
    // The same with a "dummy" node, which shows nothing.
    NodeAndLink insertDummyNode(const std::shared_ptr<Link>& link);
    // Moves the group's values to a new member, which is returned. Null when it is not a group or shows nothing.
    std::shared_ptr<Node> createInfoNode(const std::shared_ptr<Node>& group);
    // Adds a link of type "dummy" from `from` to `to`, which represents `link` in the group of those two.
    void createDummyLink(const std::shared_ptr<Node>& from, const std::shared_ptr<Node>& to,
                         const std::shared_ptr<Link>& link);
    // Layers one group, or the top level when it is null. A range error, reported, when a cycle is reached.
    basekit2::error_code_t calculateHierarchicalLevelsForGroup(const std::shared_ptr<Node>& group);
    // Empties the layers of all groups.
    void clearHierarchicalLevelManagers();
    // The part of addDummyNodesForLabels() for links between groups; called at its end.
    basekit2::error_code_t addDummyNodesForLabelsOnCrosslevelLinks();
    // Exchanges the links and the groups of two nodes, which keep their layers. Takes time in proportion to the
    // number of all links.
    void swapNodes(const std::shared_ptr<Node>& a, const std::shared_ptr<Node>& b);
    // Moves the node from the members of its group to those of `group`; null is the top level.
    void changeNodeGroup(const std::shared_ptr<Node>& node, const std::shared_ptr<Node>& group);

    // Each adds one child bag to `out`: "diagram", "nodes", "links". `out` belongs to the caller and keeps
    // what it holds; a second call adds a second child. They may add empty entries to tables and copy group
    // levels to the nodes, but change nothing that is shown.
    void dumpTotalInfo(basekit2::variant_bag_t& out) const;
    void dumpNodes(basekit2::variant_bag_t& out);
    void dumpLinks(basekit2::variant_bag_t& out);

    std::string m_id;
    std::string m_name;
    // The key under which data transfers are looked up, by passes and by dumps: one of displayModeNames.
    // Any other text is accepted; then no data transfer is shown.
    std::string m_displayMode{displayModeNames.front()};
    // By id. Of several objects with one id the latest is here; the lists below have them all.
    IdMap<Node> m_nodes;
    IdMap<Link> m_links;
    std::vector<std::shared_ptr<Node>> m_nodeList;  // in order of addNode
    std::vector<std::shared_ptr<Link>> m_linkList;  // in order of addLink
    std::vector<std::shared_ptr<Node>> m_groups;    // distinct groups of all nodes; null is the top level
    // Nesting depth of each node; filled by the last pass, read by dumpNodes().
    GroupLevelManager m_groupLevelManager;
    // The layers of each group; the null key is the top level. A group without an entry is not layered.
    std::map<std::shared_ptr<Node>, HierarchicalLevelManager> m_levelManagers;
};

}  // namespace tessera_1::view_model
