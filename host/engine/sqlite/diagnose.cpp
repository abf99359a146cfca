#include "host/engine/sqlite/diagnose.h"

#include <utility>

#include "host/document/text.h"
#include "host/engine/sqlite/declaration_check.h"
#include "host/engine/sqlite/snapshot.h"

namespace tessera_host {
namespace {

// The filters that can be put into SQL; the others are added to `problems`.
FilterList soundFilters(const Filters& filters, std::vector<Problem>& problems) {
    FilterList sound;
    for (const auto& [name, filter] : filters) {
        if (auto problem = fragmentProblem(filterSubject(name), filter.predicate))
            problems.push_back({filter.position, std::move(*problem)});
        else
            sound.push_back({name, filter.predicate});
    }
    return sound;
}

}  // namespace

std::vector<Problem> diagnose(const std::shared_ptr<Database>& database, const Declarations& declarations,
                              const Filters& filters, const relay2::IProgress* progress) {
    const Snapshot snapshot(database, progress);
    if (const auto failure = snapshot.failure()) return {{{}, failure->text}};
    std::vector<Problem> problems;
    const FilterList sound = soundFilters(filters, problems);
    for (const QueryDeclaration& query : declarations.queries()) {
        if (progress && progress->isCancelled()) break;
        std::vector<std::string> texts = fragmentProblems(query);
        for (std::string& text : databaseProblems(database->connection(), query, sound))
            texts.push_back(std::move(text));
        for (const std::string& text : texts)
            problems.push_back({query.position, "query " + quoted(query.id) + ": " + text});
    }
    return problems;
}

}  // namespace tessera_host
