#include "core/viewpointparser.h"

#include <array>
#include <utility>

#include "core/check.h"
#include "platform/optstore2/message_catalog_source.h"

namespace tessera_1 {

TESSERA_SOURCE_UNIT("core/viewpointparser");

using basekit2::variant_t;

std::string getAttrAndLocalize(const basekit2::variant_bag_t& bag, std::string name, bool localize) {
    const variant_t* value = bag.get(name);
    if (value == nullptr) return {};
    const auto text = value->get<std::string_view>();
    return localize ? getMessageFromCatalog(std::string(text)) : std::string(text);
}

std::string getMessageFromCatalog(const std::string& key) {
    static const std::array<std::string, 3> catalogNames{"slicer2", "viewpoint", "storeiface1"};
    for (const std::string& catalogName : catalogNames) {
        const auto source = optstore2::getMessageCatalogSource();
        const auto catalog = source->getCatalog(catalogName);
        if (!catalog || !catalog->has_message(key)) continue;
        const auto text = catalog->message(key).as_ustring(RTBASE_2_18::generic::varg_list{});
        if (!text.empty()) return text.str();
    }
    return key;
}

bool hasAttr(const basekit2::variant_bag_t& bag, std::string name) {
    return bag.get(name) != nullptr;
}

DViewpointParser::DViewpointParser() = default;

DViewpointParser::~DViewpointParser() = default;

void DViewpointParser::parseViewpoint(variant_bag_t viewpoint,
                                      basekit2::sptr_t<qlib_1::IQueryLibrary> library,
                                      relay2::IMessenger* messenger,
                                      basekit2::sptr_t<qlib_1::IInputData> result,
                                      std::shared_ptr<view_model::Graph>& graph) {
    TESSERA_CHECK(library && result);
    m_messenger = messenger;
    m_library = std::move(library);
    if (graph) return;
    graph = std::make_shared<view_model::Graph>();
    m_targetGraph = graph;

    for (auto diagram = viewpoint.begin(); !diagram.at_end(); diagram.next()) {
        if (diagram.get_name() != "diagram") continue;
        for (auto section = diagram.get_value().begin(); !section.at_end(); section.next()) {
            const std::string_view name = section.get_name();
            if (name == "graph")
                parseGraph(section.get_value());
            else if (name == "display")
                parseDisplaySection(section.get_value());
            else
                TESSERA_ALERT("Unknown element <" + std::string(name) +
                              "> found under <diagram>. Expected <graph>, <display>.");
        }
    }
}

}  // namespace tessera_1
