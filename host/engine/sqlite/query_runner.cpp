#include "host/engine/sqlite/query_runner.h"

#include <utility>

namespace tessera_host {
namespace {

// A prepared statement takes some kilobytes. Documents with more queries than this prepare them anew each
// time.
constexpr std::size_t maxWithStatements = 1'000;

}  // namespace

void QueryRunner::setFilters(FilterList filters) {
    if (filters == m_filters) return;
    m_queries.clear();
    m_filters = std::move(filters);
}

bool QueryRunner::knows(const ReferenceQuery& reference) const {
    const QueryDeclaration& declaration = reference.declaration();
    const auto& queries = m_declarations->queries();
    return declaration.index < queries.size() && &queries[declaration.index] == &declaration;
}

QueryRunner::Result QueryRunner::run(const ReferenceQuery& reference, const relay2::IProgress* progress) {
    if (std::exchange(m_epoch, m_database->epoch()) != m_database->epoch()) m_queries.clear();
    DeclaredQuery& query = queryFor(reference.declaration());
    const bool hadStatements = query.hasStatements();
    if (!hadStatements && m_withStatements >= maxWithStatements) dropStatements();
    const Answer& answer =
        query.answer(reference, {m_database->connection(), progress, m_database->snapshotNumber()});
    if (!hadStatements && query.hasStatements()) ++m_withStatements;
    return {answer, query};
}

DeclaredQuery& QueryRunner::queryFor(const QueryDeclaration& declaration) {
    if (m_queries.empty()) {
        m_queries.resize(m_declarations->queries().size());
        m_withStatements = 0;
    }
    std::unique_ptr<DeclaredQuery>& query = m_queries[declaration.index];
    if (!query) query = std::make_unique<DeclaredQuery>(declaration, m_filters);
    return *query;
}

void QueryRunner::dropStatements() {
    for (const auto& query : m_queries)
        if (query) query->dropStatements();
    m_withStatements = 0;
}

}  // namespace tessera_host
