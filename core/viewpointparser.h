// Reads the diagram part of a pane's viewpoint into a graph.
#pragma once

#include <memory>
#include <string>

#include "core/export.h"
#include "core/view_model/graph.h"
#include "platform/basekit2/sptr.h"
#include "platform/basekit2/variant_bag.h"
#include "platform/qlib_1/input_data.h"
#include "platform/qlib_1/query_library.h"
#include "platform/relay2/messenger.h"

namespace tessera_1 {

// The value `name` of `bag`, or "" when there is none; looked up in the message catalogues when `localize` is
// set. A value that is not a string fails the host's own assertion.
[[nodiscard]] TESSERA_EXPORT std::string getAttrAndLocalize(const basekit2::variant_bag_t& bag,
                                                            std::string name, bool localize);

// The text of `key` from the first of the catalogues "slicer2", "viewpoint" and "storeiface1" that has one
// which is not empty; otherwise the key itself.
[[nodiscard]] TESSERA_EXPORT std::string getMessageFromCatalog(const std::string& key);

// Whether `bag` holds a value (a child bag does not count) under `name`.
[[nodiscard]] TESSERA_EXPORT bool hasAttr(const basekit2::variant_bag_t& bag, std::string name);

// Nothing in a document stops the parse: what is wrong is reported and skipped. Not synchronised.
class TESSERA_EXPORT DViewpointParser {
  public:
    using variant_bag_t = basekit2::variant_bag_t;

    DViewpointParser();
    DViewpointParser(const DViewpointParser&) = delete;
    DViewpointParser& operator=(const DViewpointParser&) = delete;
    virtual ~DViewpointParser();

    // Reads every "diagram" of `viewpoint` into a new graph, which it stores in `graph`. A graph that is set
    // already is left alone and nothing is read. Without query library or input data the precondition
    // "library && result" is reported and nothing is stored.
    void parseViewpoint(variant_bag_t viewpoint, basekit2::sptr_t<qlib_1::IQueryLibrary> library,
                        relay2::IMessenger* messenger, basekit2::sptr_t<qlib_1::IInputData> result,
                        std::shared_ptr<view_model::Graph>& graph);

    // The same without the copy; reports are those of parseViewpoint.
    TESSERA_HIDDEN void parseWithoutCopy(const variant_bag_t& viewpoint,
                                         basekit2::sptr_t<qlib_1::IQueryLibrary> library,
                                         relay2::IMessenger* messenger,
                                         const basekit2::sptr_t<qlib_1::IInputData>& result,
                                         std::shared_ptr<view_model::Graph>& graph);

    // The "graph" section: ids, groups, links.
    // REQUIRES of all that follow: parseViewpoint has stored a graph.
    void parseGraph(const variant_bag_t& graph);
    // Members of groups are added to the graph before the group that holds them. Any depth.
    void parseNode(std::shared_ptr<view_model::Node> node, const variant_bag_t& bag);
    void parseLink(std::shared_ptr<view_model::Link> link, const variant_bag_t& bag);

    // The "display" section: names, types, values. It reaches only nodes and links that the graph has by
    // then.
    void parseDisplaySection(const variant_bag_t& display);
    // Reads the "rowSet" of an element into `info`; of several the last one counts.
    void parseDisplayInfo(std::shared_ptr<view_model::DisplayInfo> info, const variant_bag_t& element);
    // Has the query library build the row set's query. When it rejects the definition, the check "rowSet.ds"
    // is reported and the row set stays without rows.
    void parseRowSet(view_model::RowSet& rowSet, const variant_bag_t& element);
    // Adds to `table` an entry for each mode that a "dataTransfer" of the label describes.
    void parseDataTransfer(view_model::DataTransferTable& table, const variant_bag_t& label);

    // Set by parseViewpoint() and kept for the parser's life.
    relay2::IMessenger* m_messenger = nullptr;  // not owned
    basekit2::sptr_t<qlib_1::IQueryLibrary> m_library;
    basekit2::sptr_t<qlib_1::IInputData> m_result;  // a slot that parseViewpoint leaves empty
    std::shared_ptr<view_model::Graph> m_targetGraph;
};

}  // namespace tessera_1
