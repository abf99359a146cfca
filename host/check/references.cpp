#include "host/check/references.h"

#include <string>
#include <unordered_map>
#include <vector>

#include "host/sqlite/declaration_check.h"

namespace tessera_host {
namespace {

using basekit2::variant_bag_t;

void checkRowSet(const variant_bag_t& rowSet, const Declarations& declarations, Findings& findings) {
    for (auto child = rowSet.begin(); !child.at_end(); child.next()) {
        if (child.get_name() != "queryRef") continue;
        const basekit2::variant_t* value = child.get_value().get("");
        if (value == nullptr) {
            findings.warning(child.get_value().position(),
                             "this queryRef refers to no query, so it never has a value");
            continue;
        }
        const auto text = value->get<std::string_view>();
        std::string reason;
        if (!declarations.parseReference(text, reason))
            findings.error(child.get_value().position(), "\"" + std::string(text) + "\" is no reference: " +
                                                             reason + "; the whole rowSet stays empty");
    }
}

}  // namespace

void checkReferences(const variant_bag_t& viewpoint, const Declarations& declarations, Findings& findings) {
    std::vector<const variant_bag_t*> open;
    for (auto child = viewpoint.begin(); !child.at_end(); child.next()) {
        if (child.get_name() != "diagram") continue;
        for (auto section = child.get_value().begin(); !section.at_end(); section.next())
            if (section.get_name() == "display") open.push_back(&section.get_value());
    }
    while (!open.empty()) {
        const variant_bag_t& element = *open.back();
        open.pop_back();
        for (auto child = element.begin(); !child.at_end(); child.next())
            if (child.get_name() == "rowSet")
                checkRowSet(child.get_value(), declarations, findings);
            else
                open.push_back(&child.get_value());
    }
}

void checkDeclarations(const Declarations& declarations, Findings& findings) {
    for (const Problem& problem : declarations.problems())
        findings.error(problem.position, problem.text);
    std::unordered_map<std::string_view, const QueryDeclaration*> seen;
    for (const QueryDeclaration& query : declarations.queries()) {
        const auto [it, isNew] = seen.try_emplace(query.id, &query);
        if (!isNew)
            findings.error(query.position, "query id \"" + query.id + "\" is used before, at line " +
                                               std::to_string(it->second->position.line) +
                                               "; only this one is used");
        it->second = &query;
    }
    for (const auto& [name, filter] : declarations.filters()) {
        if (name != "selection" && name != "global")
            findings.warning(filter.position,
                             "filter \"" + name +
                                 "\" is never applied; the filters are called \"selection\" and \"global\"");
    }
}

void checkSqlText(const Declarations& declarations, const Filters& filters, Findings& findings) {
    for (const QueryDeclaration& query : declarations.queries())
        for (const std::string& problem : fragmentProblems(query))
            findings.error(query.position, "query \"" + query.id + "\": " + problem);
    for (const auto& [name, filter] : filters)
        if (const auto problem = fragmentProblem(filterSubject(name), filter.predicate))
            findings.error(filter.position, *problem);
}

}  // namespace tessera_host
