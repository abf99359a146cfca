// The display section: names, types, alignings and the values that nodes and links show.
#include <algorithm>
#include <string>
#include <utility>

#include "core/check.h"
#include "core/viewpointparser.h"
#include "core/vocabulary.h"

namespace tessera_1 {

TESSERA_SOURCE_UNIT("core/viewpointparser");

using view_model::DataTransferTable;
using view_model::DisplayInfo;
using view_model::Link;
using view_model::Node;
using view_model::RowSet;

namespace {

DataTransferTable& tableAt(Link& link, const std::string& location) {
    if (location == "to") return link.m_displayInfo.m_toInfo;
    if (location == "from") return link.m_displayInfo.m_fromInfo;
    return link.m_displayInfo.m_totalInfo;
}

void parseDisplayNode(DViewpointParser& parser, Node& node, std::string displayName,
                      const basekit2::variant_bag_t& element) {
    auto info = std::make_shared<DisplayInfo>();
    parser.parseDisplayInfo(info, element);
    node.m_info = std::move(info);
    node.m_displayName = std::move(displayName);
    if (std::string type = getAttrAndLocalize(element, "type", false); !type.empty())
        node.m_displayType = std::move(type);
    if (std::string aligning = getAttrAndLocalize(element, "aligning", false); !aligning.empty())
        node.m_aligning = std::move(aligning);
}

// Alerts are reported as those of `signature`.
void parseDisplayLink(DViewpointParser& parser, Link& link, std::string displayName,
                      const basekit2::variant_bag_t& element, const char* signature) {
    link.m_displayName = std::move(displayName);
    for (auto child = element.begin(); !child.at_end(); child.next()) {
        const std::string location = getAttrAndLocalize(child.get_value(), "location", false);
        if (child.get_name() != "label") {
            TESSERA_ALERT_IN(signature, "Unknown element <" + std::string(child.get_name()) +
                                            "> found under <link >. Expected <label>.");
            continue;
        }
        DataTransferTable table;
        parser.parseDataTransfer(table, child.get_value());
        tableAt(link, location) = std::move(table);
    }
}

}  // namespace

void DViewpointParser::parseDisplaySection(const variant_bag_t& display) {
    for (auto child = display.begin(); !child.at_end(); child.next()) {
        const std::string_view name = child.get_name();
        const variant_bag_t& element = child.get_value();
        std::string displayName = getAttrAndLocalize(element, "displayName", true);
        const std::string id = getAttrAndLocalize(element, "id", false);
        if (name == "graph") {
            m_targetGraph->m_name = std::move(displayName);
        } else if (name == "node") {
            if (const auto node = m_targetGraph->findNode(id))
                parseDisplayNode(*this, *node, std::move(displayName), element);
        } else if (name == "link") {
            if (const auto link = m_targetGraph->findLink(id))
                parseDisplayLink(*this, *link, std::move(displayName), element, TESSERA_SIGNATURE);
        } else {
            TESSERA_ALERT("Unknown element <" + std::string(name) +
                          "> found under <displayName>. Expected <graph>, <node>, <link>.");
        }
    }
}

void DViewpointParser::parseDataTransfer(DataTransferTable& table, const variant_bag_t& label) {
    for (auto child = label.begin(); !child.at_end(); child.next()) {
        const std::string displayName = getAttrAndLocalize(child.get_value(), "displayName", true);
        if (child.get_name() != "dataTransfer") {
            TESSERA_ALERT("Unknown element <" + std::string(child.get_name()) +
                          "> found . Expected <dataTransfer>");
            continue;
        }
        for (auto mode = child.get_value().begin(); !mode.at_end(); mode.next()) {
            const std::string_view name = mode.get_name();
            if (std::find(displayModeNames.begin(), displayModeNames.end(), name) == displayModeNames.end()) {
                TESSERA_ALERT("Unknown element <" + std::string(name) +
                              "> found under <dataTransfer>. Expected <bandwidth>, <ratio>, <size>");
                continue;
            }
            auto info = std::make_shared<DisplayInfo>();
            info->m_name = displayName;
            parseDisplayInfo(info, mode.get_value());
            table[std::string(name)] = std::move(info);
        }
    }
}

void DViewpointParser::parseDisplayInfo(std::shared_ptr<DisplayInfo> info, const variant_bag_t& element) {
    info->m_rowSet.ds = nullptr;
    for (auto child = element.begin(); !child.at_end(); child.next()) {
        if (child.get_name() != "rowSet") {
            TESSERA_ALERT("Unknown element <" + std::string(child.get_name()) +
                          "> found under <bandwidth>, <ratio>, <size>, expected <rowSet>");
            continue;
        }
        RowSet rowSet;
        parseRowSet(rowSet, child.get_value());
        info->m_rowSet.m_name = std::move(rowSet.m_name);
        info->m_rowSet.rows = std::move(rowSet.rows);
        info->m_rowSet.ds = std::move(rowSet.ds);
        info->m_rowSet.m_bag = std::move(rowSet.m_bag);
    }
}

void DViewpointParser::parseRowSet(RowSet& rowSet, const variant_bag_t& element) {
    rowSet.m_name = getAttrAndLocalize(element, "displayName", true);
    rowSet.m_bag = element;
    rowSet.m_flag = false;
    rowSet.ds = qlib_1::IVectorQuery::cast(m_library->buildQuery(rowSet.m_bag, m_messenger));
    TESSERA_CHECK(rowSet.ds);
    for (auto child = element.begin(); !child.at_end(); child.next()) {
        if (child.get_name() != "queryRef") {
            TESSERA_ALERT("Unknown element <" + std::string(child.get_name()) +
                          "> found under <rowSet>. Expected <queryRef>");
            continue;
        }
        view_model::Row row;
        row.m_name = getAttrAndLocalize(child.get_value(), "displayName", true);
        row.m_query = getAttrAndLocalize(child.get_value(), "", false);
        rowSet.rows.push_back(std::move(row));
    }
}

}  // namespace tessera_1
