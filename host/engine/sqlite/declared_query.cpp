#include "host/engine/sqlite/declared_query.h"

#include <algorithm>
#include <utility>

#include "host/engine/sqlite/declaration_check.h"
#include "host/values/number_text.h"

namespace tessera_host {
namespace {

// Sorting the rows into groups takes about as long as a dozen looks at all of them, so fewer references than
// this are not worth it; and neither are steps of a few milliseconds.
constexpr std::uint64_t minReferences = 16;
constexpr std::uint64_t minSteps = 100'000;
// What a single run costs beyond its steps: binding, starting and ending.
constexpr std::uint64_t stepsPerRun = 50;

KeyMatch matchOf(const std::vector<std::string>& keys) {
    return std::any_of(keys.begin(), keys.end(), [](const std::string& key) { return isNumeric(key); })
               ? KeyMatch::number
               : KeyMatch::text;
}

void bindKeys(StatementRun& run, const std::vector<std::string>& keys, KeyMatch match) {
    const int count = static_cast<int>(keys.size());
    for (int i = 0; i < count; ++i) {
        const std::string& key = keys[static_cast<std::size_t>(i)];
        run.bindText(i + 1, key);
        if (match == KeyMatch::number) run.bindFlag(count + i + 1, isNumeric(key));
    }
}

bool isCancelled(const Answer& answer) {
    const auto* failure = std::get_if<Failure>(&answer);
    return failure && failure->isCancelled;
}

}  // namespace

const Answer& DeclaredQuery::answer(const ReferenceQuery& reference, const RunPlace& place) {
    if (place.snapshotNumber != m_snapshotNumber) startSnapshot(place.snapshotNumber);
    if (const Answer* grouped = groupedAnswer(reference, place)) return *grouped;
    if (const auto it = m_answers.find(reference.keyText()); it != m_answers.end()) return it->second;
    Answer answer = compute(reference, place);
    if (!isCancelled(answer)) return m_answers.emplace(reference.keyText(), std::move(answer)).first->second;
    m_cancelled = std::move(answer);
    return m_cancelled;
}

void DeclaredQuery::startSnapshot(std::uint64_t snapshotNumber) {
    m_snapshotNumber = snapshotNumber;
    m_defect.reset();
    m_answers.clear();
    m_groups.clear();
    m_noRows.reset();
    m_singleRuns = 0;
    m_singleSteps = 0;
}

bool DeclaredQuery::claimTelling(std::uint64_t snapshotNumber) {
    return std::exchange(m_toldSnapshot, snapshotNumber) != snapshotNumber;
}

void DeclaredQuery::dropStatements() {
    m_text = {};
    m_number = {};
}

Answer DeclaredQuery::compute(const ReferenceQuery& reference, const RunPlace& place) {
    if (!m_isSound && !m_defect) m_defect = findDefect(place.connection);
    if (m_defect) return *m_defect;
    m_isSound = true;
    if (auto cancellation = considerGrouping(reference, place)) return *cancellation;
    if (const Answer* grouped = groupedAnswer(reference, place)) return *grouped;
    return runSingle(reference, place);
}

// Why the query has no value, whatever the rows; the first of all reasons, since one is told.
std::optional<Failure> DeclaredQuery::findDefect(Connection& connection) {
    std::vector<std::string> problems = fragmentProblems(m_query);
    for (const NamedFilter& filter : m_filters)
        if (auto problem = fragmentProblem(filterSubject(filter.name), filter.predicate))
            problems.push_back(*problem);
    std::string rejection;
    if (problems.empty()) {
        m_text = connection.prepare(singleSql(m_query, m_filters, KeyMatch::text),
                                    mayRecurse(m_query, m_filters), rejection);
        if (!m_text)
            problems = databaseProblems(connection, m_query, m_filters);
        else if (auto problem = aggregateProblem(connection, m_query))
            problems.push_back(*problem);
        if (problems.empty() && !m_text) problems.push_back(rejection);
    }
    if (problems.empty()) return std::nullopt;
    return Failure{problems.front()};
}

std::optional<Failure> DeclaredQuery::considerGrouping(const ReferenceQuery& reference,
                                                       const RunPlace& place) {
    if (m_groups.state() != GroupedAnswers::State::untried || m_query.keys.empty() || m_singleRuns == 0)
        return std::nullopt;
    const std::uint64_t known = reference.siblings().size();
    const std::uint64_t remaining = known - std::min<std::uint64_t>(known, m_answers.size());
    const std::uint64_t cost = remaining * (m_singleSteps / m_singleRuns + stepsPerRun);
    if (remaining < minReferences || cost < minSteps) return std::nullopt;
    if (!m_hasSameOrder) m_hasSameOrder = GroupedAnswers::hasSameOrder(place.connection, m_query, m_filters);
    if (!*m_hasSameOrder) {
        m_groups.refuse();
        return std::nullopt;
    }
    return m_groups.load(place.connection, m_query, m_filters, reference.siblings(),
                         {place.progress, place.connection.timeouts().query, cost});
}

const Answer* DeclaredQuery::groupedAnswer(const ReferenceQuery& reference, const RunPlace& place) {
    if (m_groups.state() != GroupedAnswers::State::loaded || !GroupedAnswers::canServe(reference.keys()))
        return nullptr;
    const Answer* answer = nullptr;
    switch (m_groups.find(reference.keyText(), answer)) {
        case GroupedAnswers::Found::one:
            return answer;
        case GroupedAnswers::Found::none:
            return &runNoRows(place);
        case GroupedAnswers::Found::several:
            return nullptr;
    }
    return nullptr;
}

Answer DeclaredQuery::runSingle(const ReferenceQuery& reference, const RunPlace& place) {
    const KeyMatch match = matchOf(reference.keys());
    Statement& statement = match == KeyMatch::text ? m_text : m_number;
    std::string problem;
    if (!statement)
        statement = place.connection.prepare(singleSql(m_query, m_filters, match),
                                             mayRecurse(m_query, m_filters), problem);
    if (!statement) return Failure{problem};
    StatementRun run(place.connection, statement, {place.progress, place.connection.timeouts().query});
    bindKeys(run, reference.keys(), match);
    Answer answer = valueOf(run);
    ++m_singleRuns;
    m_singleSteps += run.steps();
    return answer;
}

const Answer& DeclaredQuery::runNoRows(const RunPlace& place) {
    if (m_noRows && !isCancelled(*m_noRows)) return *m_noRows;
    std::string problem;
    Statement statement =
        place.connection.prepare(noRowsSql(m_query, m_filters), mayRecurse(m_query, m_filters), problem);
    if (!statement) return m_noRows.emplace(Failure{problem});
    StatementRun run(place.connection, statement, {place.progress, place.connection.timeouts().query});
    return m_noRows.emplace(valueOf(run));
}

// An aggregate has one row, always.
Answer DeclaredQuery::valueOf(StatementRun& run) const {
    if (run.step() == StatementRun::Step::row)
        return formatCell(run.columnValue(0), m_query.format, m_query.unit);
    return run.failure();
}

}  // namespace tessera_host
