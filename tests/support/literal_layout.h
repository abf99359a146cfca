// The layout a second time: every pass as plain walks over everything, slow and easy to read, to compare the
// library's passes with. Nothing of core/view_model/passes is used.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "core/view_model/graph.h"
#include "tests/support/model_building.h"

namespace tessera_test::literal {

using tessera_1::view_model::DataTransferTable;
using tessera_1::view_model::Graph;
using tessera_1::view_model::HierarchicalLevelManager;
using tessera_1::view_model::Link;
using tessera_1::view_model::LinkDisplayInfo;
using tessera_1::view_model::Node;

enum class Code { success, falseCode, rangeError };

// Thrown when a diagram outgrows what is worth comparing.
struct TooLarge : std::length_error {
    TooLarge() : std::length_error("the diagram has become too large to be compared") {}
};

// What the passes report while they run.
struct Record {
    std::vector<std::string> failed;  // the texts of the conditions that did not hold, in order
    int exchanges = 0;                // of two nodes
    std::size_t maxNodes = 1'000;
    std::size_t maxIdBytes = 100'000;  // of one node
};

// The passes, in the order in which they run.
Code setLinkInfoAsNodes(Graph& graph, Record& record);
Code setGroupInfoAsNodes(Graph& graph, Record& record);
void createDummyLinksForGroups(Graph& graph);
Code calculateHierarchicalLevels(Graph& graph, Record& record);
Code addDummyNodesForLabels(Graph& graph, Record& record);
Code addDummyNodesForInterfaces(Graph& graph, Record& record);
Code adjustLabelLocations(Graph& graph, Record& record);
void setNodeAlignings(Graph& graph, Record& record);
Code setGroupLevels(Graph& graph, Record& record);

// What they share.
Code setLevel(HierarchicalLevelManager& manager, const NodePtr& node, int level, bool keepPlaceholder,
              Record& record);
Code addToGroup(const NodePtr& node, const NodePtr& group, Record& record);
void setChildrenAndParents(Graph& graph);
void collectGroups(Graph& graph);
std::pair<NodePtr, NodePtr> getFromToBelongToTheSameGroup(const Link& link);
std::pair<NodePtr, LinkPtr> insertNode(Graph& graph, const LinkPtr& link, DataTransferTable transfers,
                                       const std::string& type, Record& record);
std::pair<NodePtr, LinkPtr> insertDummyNode(Graph& graph, const LinkPtr& link, Record& record);

// Whether both ends of the link are there; a link without one takes no part in any pass.
inline bool isWhole(const Link& link) {
    return link.m_from != nullptr && link.m_to != nullptr;
}

}  // namespace tessera_test::literal
