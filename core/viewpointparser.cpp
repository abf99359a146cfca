#include "core/viewpointparser.h"

#include <string_view>
#include <utility>

#include "core/check.h"
#include "platform/optstore2/message_catalog_source.h"

namespace tessera_1 {

TESSERA_SOURCE_UNIT("core/viewpointparser");

using basekit2::variant_t;

namespace {

constexpr const char* signatureOfParse =
    "void tessera_1::DViewpointParser::parseViewpoint(tessera_1::DViewpointParser::variant_bag_t, "
    "basekit2::sptr_t<qlib_1::IQueryLibrary>, relay2::IMessenger*, basekit2::sptr_t<qlib_1::IInputData>, "
    "std::shared_ptr<tessera_1::view_model::Graph>&)";

}  // namespace

std::string getAttrAndLocalize(const basekit2::variant_bag_t& bag, std::string name, bool localize) {
    const variant_t* value = bag.get(name);
    if (value == nullptr) return {};
    const auto text = value->get<std::string_view>();
    return localize ? getMessageFromCatalog(std::string(text)) : std::string(text);
}

std::string getMessageFromCatalog(const std::string& key) {
    for (const std::string_view catalogName : optstore2::catalogNames) {
        const auto source = optstore2::getMessageCatalogSource();
        std::string text = optstore2::textIn(source->getCatalog(std::string(catalogName)), key);
        if (!text.empty()) return text;
    }
    return key;
}

bool hasAttr(const basekit2::variant_bag_t& bag, std::string name) {
    return bag.get(name) != nullptr;
}

DViewpointParser::DViewpointParser() = default;

DViewpointParser::~DViewpointParser() = default;

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface passes a copy
void DViewpointParser::parseViewpoint(variant_bag_t viewpoint,
                                      basekit2::sptr_t<qlib_1::IQueryLibrary> library,
                                      relay2::IMessenger* messenger,
                                      basekit2::sptr_t<qlib_1::IInputData> result,
                                      std::shared_ptr<view_model::Graph>& graph) {
    parseWithoutCopy(viewpoint, std::move(library), messenger, result, graph);
}

void DViewpointParser::parseWithoutCopy(const variant_bag_t& viewpoint,
                                        basekit2::sptr_t<qlib_1::IQueryLibrary> library,
                                        relay2::IMessenger* messenger,
                                        const basekit2::sptr_t<qlib_1::IInputData>& result,
                                        std::shared_ptr<view_model::Graph>& graph) {
    TESSERA_CHECK_IN(signatureOfParse, library && result);
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
                TESSERA_ALERT_IN(signatureOfParse,
                                 "Unknown element <" + std::string(name) +
                                     "> found under <diagram>. Expected <graph>, <display>.");
        }
    }
}

}  // namespace tessera_1
