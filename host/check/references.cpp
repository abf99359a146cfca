#include "host/check/references.h"

#include <string>
#include <unordered_map>
#include <vector>

#include "host/check/element.h"
#include "host/document/text.h"
#include "host/engine/declaration_check.h"

namespace tessera_host {
namespace {

using basekit2::source_position_t;
using basekit2::variant_bag_t;

using Positions = std::unordered_map<std::string_view, source_position_t>;

// Of rows with equal references the first receives the value.
void checkRowSet(const variant_bag_t& rowSet, const Declarations& declarations, Findings& findings,
                 Watch& watch) {
    Positions seen;
    std::string reason;
    for (auto child = rowSet.begin(); !child.at_end() && !watch.mustStop(); child.next()) {
        if (child.get_name() != "queryRef") continue;
        const source_position_t here = child.get_value().position();
        const std::string_view text = attribute(child.get_value(), "");
        if (text.empty()) {
            findings.warning(here, "this queryRef refers to no query, so it never has a value");
        } else if (!declarations.parseReference(text, reason)) {
            findings.error(here,
                           quoted(text) + " is no reference: " + reason + "; the whole rowSet stays empty");
        } else if (const auto [it, isNew] = seen.try_emplace(text, here); !isNew) {
            findings.warning(here, "this rowSet refers to " + quoted(text) + " before, at " +
                                       placeOf(it->second, here) +
                                       "; the value goes there, so this row is never shown");
        }
    }
}

void checkQueries(const Declarations& declarations, Findings& findings, Watch& watch) {
    Positions seen;
    for (const QueryDeclaration& query : declarations.queries()) {
        if (watch.mustStop()) return;
        const auto [it, isNew] = seen.try_emplace(query.id, query.position);
        if (!isNew)
            findings.error(query.position, "query id " + quoted(query.id) + " is used before, at " +
                                               placeOf(it->second, query.position) +
                                               "; the query there is not used");
        it->second = query.position;
    }
}

void checkFilter(const variant_bag_t& element, Positions& seen, Findings& findings) {
    const std::string_view name = attribute(element, "name");
    if (name.empty()) return;  // told with the declarations
    const source_position_t here = element.position();
    if (name != "selection" && name != "global")
        findings.warning(here, "filter " + quoted(name) +
                                   " is never applied; the filters are called \"selection\" and \"global\"");
    const auto [it, isNew] = seen.try_emplace(name, here);
    if (!isNew)
        findings.error(here, "filter " + quoted(name) + " is declared before, at " +
                                 placeOf(it->second, here) + "; the filter there is not applied");
    it->second = here;
}

}  // namespace

void checkReferences(const DisplaySections::RowSets& rowSets, const Declarations& declarations,
                     Findings& findings, Watch& watch) {
    for (const variant_bag_t* rowSet : rowSets) {
        if (watch.mustStop()) return;
        checkRowSet(*rowSet, declarations, findings, watch);
    }
}

void checkDeclarations(const variant_bag_t& viewpoint, const Declarations& declarations, Findings& findings,
                       Watch& watch) {
    for (const Problem& problem : declarations.problems())
        findings.error(problem.position, problem.text);
    checkQueries(declarations, findings, watch);
    Positions filters;
    for (auto section = viewpoint.begin(); !section.at_end() && !watch.mustStop(); section.next()) {
        if (section.get_name() != "filters") continue;
        for (auto child = section.get_value().begin(); !child.at_end() && !watch.mustStop(); child.next())
            if (child.get_name() == "filter") checkFilter(child.get_value(), filters, findings);
    }
}

void checkSqlText(const Declarations& declarations, const Filters& filters, Findings& findings,
                  Watch& watch) {
    if (watch.mustStop()) return;
    const Engine& usualEngine = EngineRegistry::builtIn().engines().front();
    for (const Problem& problem : checkWithoutResult(usualEngine, declarations, filters))
        findings.error(problem.position, problem.text);
}

}  // namespace tessera_host
