#include "core/view_model/output/unknown_mode.h"

#include <algorithm>
#include <string>

#include "core/view_model/graph.h"

namespace tessera_1::view_model {
namespace {

void forget(DataTransferTable& table, const std::string& mode) {
    if (const auto entry = table.find(mode); entry != table.end() && !entry->second) table.erase(entry);
}

}  // namespace

void forgetUnknownMode(Graph& graph) {
    const std::string& mode = graph.m_displayMode;
    if (std::find(displayModeNames.begin(), displayModeNames.end(), mode) != displayModeNames.end()) return;
    for (const auto& node : graph.m_nodeList)
        forget(node->m_dataTransfers, mode);
    for (const auto& link : graph.m_linkList)
        for (DataTransferTable* table : {&link->m_displayInfo.m_fromInfo, &link->m_displayInfo.m_toInfo,
                                         &link->m_displayInfo.m_totalInfo})
            forget(*table, mode);
}

}  // namespace tessera_1::view_model
