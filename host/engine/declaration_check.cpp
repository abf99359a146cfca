#include "host/engine/declaration_check.h"

#include <utility>

#include "host/document/text.h"

namespace tessera_host {
namespace {

// Collects the problems of filters and queries; each of the two functions checks one.
template <class CheckFilter, class CheckSelection>
std::vector<Problem> collect(const Declarations& declarations, const Filters& filters,
                             const CancelToken& cancel, CheckFilter checkFilter, CheckSelection check) {
    std::vector<Problem> problems;
    FilterList acceptable;
    for (const auto& [name, filter] : filters) {
        NamedFilter named{name, filter.predicate};
        if (auto checked = checkFilter(named))
            acceptable.push_back(std::move(named));
        else
            problems.push_back({filter.position, std::move(checked).error().text});
    }
    for (const QueryDeclaration& query : declarations.queries()) {
        if (cancel.isCancelled()) break;
        for (const std::string& text : check(Selection(query, acceptable)))
            problems.push_back({query.position, "query " + quoted(query.id) + ": " + text});
    }
    return problems;
}

}  // namespace

std::vector<Problem> checkAgainstResult(IResult& result, const Declarations& declarations,
                                        const Filters& filters, const RunOptions& options) {
    auto begun = result.begin(options);
    if (!begun) return {{{}, begun.error().text}};
    ISnapshot& snapshot = **begun;
    return collect(
        declarations, filters, options.cancel,
        [&](const NamedFilter& filter) { return snapshot.checkFilter(filter); },
        [&](const Selection& selection) { return snapshot.check(selection, options); });
}

std::vector<Problem> checkWithoutResult(const Engine& engine, const Declarations& declarations,
                                        const Filters& filters, const CancelToken& cancel) {
    return collect(declarations, filters, cancel, engine.checkFilterText, engine.checkText);
}

}  // namespace tessera_host
