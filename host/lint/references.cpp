#include "host/lint/references.h"

#include <string>
#include <unordered_map>
#include <vector>

#include "host/document/text.h"
#include "host/lint/place_text.h"

namespace tessera_host {
namespace {

using basekit2::source_position_t;
using basekit2::variant_bag_t;
using tessera_support::CancelToken;

using Positions = std::unordered_map<std::string_view, source_position_t>;

// Of rows with equal references the first receives the value.
void checkRows(const DocumentStructure& structure, DocumentStructure::Range rows,
               const Declarations& declarations, ProblemList& problems, const CancelToken& token) {
    Positions seen;
    for (auto i = rows.begin; i < rows.end && !token.isCancelled(); ++i) {
        const auto& [element, text] = structure.rows()[i];
        const source_position_t here = element->position();
        if (text.empty()) {
            problems.warning(here, "this queryRef refers to no query, so it never has a value");
        } else if (const auto reference = declarations.parseReference(text); !reference) {
            problems.error(here, quoted(text) + " is not a reference: " + reference.error().text +
                                     "; the whole rowSet stays empty");
        } else if (const auto [it, isNew] = seen.try_emplace(text, here); !isNew) {
            problems.warning(here, "duplicate reference " + quoted(text) + " in this rowSet: the row at " +
                                       placeText(it->second, here) +
                                       " shows the value, and this one is never shown");
        }
    }
}

// Of queries with equal ids the last counts, so each earlier one is reported at the one that follows it.
void checkQueries(const Declarations& declarations, ProblemList& problems, const CancelToken& token) {
    Positions seen;
    for (const QueryDeclaration& query : declarations.queries()) {
        if (token.isCancelled()) return;
        const auto [it, isNew] = seen.try_emplace(query.id, query.position);
        if (!isNew)
            problems.error(query.position, "duplicate query id " + quoted(query.id) + ": the query at " +
                                               placeText(it->second, query.position) + " is not used");
        it->second = query.position;
    }
}

// Of filters with equal names the last is applied.
void checkFilter(const variant_bag_t& element, Positions& seen, ProblemList& problems) {
    const std::string_view name = element.get_text("name");
    if (name.empty()) return;  // reported with the declarations
    const source_position_t here = element.position();
    if (!isFilterName(name))
        problems.warning(
            here, "filter " + quoted(name) + " is never applied; the filters are called " + filterNameList());
    const auto [it, isNew] = seen.try_emplace(name, here);
    if (!isNew)
        problems.error(here, "duplicate filter " + quoted(name) + ": the filter at " +
                                 placeText(it->second, here) + " is not applied");
    it->second = here;
}

}  // namespace

void checkReferences(const DocumentStructure& structure, const Declarations& declarations,
                     ProblemList& problems, const CancelToken& token) {
    for (const auto& rowSet : structure.rowSets()) {
        if (token.isCancelled()) return;
        checkRows(structure, rowSet.rows, declarations, problems, token);
    }
}

void checkDeclarations(const Viewpoint& viewpoint, ProblemList& problems, const CancelToken& token) {
    checkQueries(*viewpoint.declarations(), problems, token);
    Positions filters;
    const variant_bag_t& document = viewpoint.bag();
    for (auto section = document.begin(); !section.at_end() && !token.isCancelled(); section.next()) {
        if (section.get_name() != "filters") continue;
        for (auto child = section.get_value().begin(); !child.at_end() && !token.isCancelled(); child.next())
            if (child.get_name() == "filter") checkFilter(child.get_value(), filters, problems);
    }
}

}  // namespace tessera_host
