#include "host/engine/sqlite/sqlite_result.h"

#include <utility>

#include "host/engine/sqlite/selection_check.h"

namespace tessera_host {
namespace {

// Connections beyond these are closed when their snapshot ends.
constexpr std::size_t maxIdle = 8;

// Calls `visit(first, count)` for each run of neighbouring questions about one selection.
template <class Visit>
Expected<void> forEachSelection(std::span<const Question> questions, Visit visit) {
    for (std::size_t first = 0; first < questions.size();) {
        std::size_t end = first + 1;
        while (end < questions.size() && questions[end].selection == questions[first].selection)
            ++end;
        if (auto done = visit(first, end - first); !done) return done;
        first = end;
    }
    return {};
}

}  // namespace

Expected<std::shared_ptr<SqliteResult>> SqliteResult::open(const std::string& path,
                                                           std::chrono::milliseconds lockWait,
                                                           const CancelToken& cancel) {
    std::shared_ptr<SqliteResult> result(new SqliteResult(path, lockWait));
    // Opens the first connection now, so that a wrong file is reported here and not by the first request.
    auto database = std::make_unique<Database>(path, lockWait);
    if (auto opened = database->open({cancel, {}}); !opened) return std::move(opened).error();
    result->giveBack(std::move(database));
    return result;
}

std::unique_ptr<Database> SqliteResult::takeDatabase() {
    const std::scoped_lock lock(m_mutex);
    if (m_idle.empty()) return std::make_unique<Database>(m_path, m_lockWait);
    // The one used last, whose page cache is most likely still valid.
    std::unique_ptr<Database> database = std::move(m_idle.back());
    m_idle.pop_back();
    return database;
}

void SqliteResult::giveBack(std::unique_ptr<Database> database) {
    const std::scoped_lock lock(m_mutex);
    if (m_idle.size() < maxIdle) m_idle.push_back(std::move(database));
}

Expected<std::unique_ptr<ISnapshot>> SqliteResult::begin(const RunOptions& options) {
    std::unique_ptr<Database> database = takeDatabase();
    auto begun = database->begin(options);
    if (begun) return std::unique_ptr<ISnapshot>(new SqliteSnapshot(shared_from_this(), std::move(database)));
    giveBack(std::move(database));
    return std::move(begun).error();
}

SqliteSnapshot::~SqliteSnapshot() {
    m_database->end();
    m_result->giveBack(std::move(m_database));
}

// SQLite gives up a transaction by itself when an error leaves it no choice.
Expected<void> SqliteSnapshot::state() const {
    if (m_database->connection().isInSnapshot()) return {};
    return Error{ErrorKind::failed, "the database was lost during the request"};
}

Expected<Answer> SqliteSnapshot::answer(const Question& question, const RunOptions& options) {
    const LimitScope limits(connection().enforcer(), {options});
    return m_database->selections().find(*question.selection).answer(connection(), *question.keys);
}

Expected<std::vector<std::optional<CellValue>>> SqliteSnapshot::answerTogether(
    std::span<const Question> questions, std::uint64_t maxWork, const RunOptions& options) {
    std::vector<std::optional<CellValue>> values(questions.size());
    auto done = forEachSelection(questions, [&](std::size_t first, std::size_t count) {
        const LimitScope limits(connection().enforcer(), {options, maxWork});
        PreparedSelection& selection = m_database->selections().find(*questions[first].selection);
        return selection.answerTogether(connection(), questions.subspan(first, count),
                                        std::span(values).subspan(first, count));
    });
    if (!done) return std::move(done).error();
    return values;
}

Expected<void> SqliteSnapshot::checkFilter(const NamedFilter& filter) {
    return checkFilterText(filter);
}

std::vector<std::string> SqliteSnapshot::check(const Selection& selection, const RunOptions& options) {
    const LimitScope limits(connection().enforcer(), {options});
    std::vector<std::string> problems = fragmentProblems(selection);
    for (std::string& problem : databaseProblems(connection(), selection))
        problems.push_back(std::move(problem));
    return problems;
}

Expected<std::vector<StatementPlan>> SqliteSnapshot::explain(std::span<const Question> questions,
                                                             const RunOptions& options) {
    std::vector<StatementPlan> plans;
    auto done = forEachSelection(questions, [&](std::size_t first, std::size_t count) -> Expected<void> {
        const LimitScope limits(connection().enforcer(), {options});
        PreparedSelection& selection = m_database->selections().find(*questions[first].selection);
        auto some = selection.explain(connection(), count);
        if (!some) return std::move(some).error();
        for (StatementPlan& plan : *some)
            plans.push_back(std::move(plan));
        return {};
    });
    if (!done) return std::move(done).error();
    return plans;
}

}  // namespace tessera_host
