#include "host/engine/query_runner.h"

#include <utility>

namespace tessera_host {

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

DeclaredQuery& QueryRunner::queryFor(const ReferenceQuery& reference) {
    const QueryDeclaration& declaration = reference.declaration();
    if (m_queries.empty()) m_queries.resize(m_declarations->queries().size());
    std::unique_ptr<DeclaredQuery>& query = m_queries[declaration.index];
    if (!query) query = std::make_unique<DeclaredQuery>(declaration, m_filters);
    return *query;
}

}  // namespace tessera_host
