// Runs references on a database.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "host/engine/sqlite/database.h"
#include "host/engine/sqlite/declared_query.h"

namespace tessera_host {

// Keeps the statements of declared queries as long as they are good for the database and the filters. Used by
// one thread at a time.
class QueryRunner {
  public:
    QueryRunner(std::shared_ptr<Database> database, std::shared_ptr<const Declarations> declarations)
        : m_database(std::move(database)), m_declarations(std::move(declarations)) {}
    QueryRunner(const QueryRunner&) = delete;
    QueryRunner& operator=(const QueryRunner&) = delete;

    // The filters that apply from now on.
    void setFilters(FilterList filters);

    // True when `reference` is to one of this runner's declarations.
    [[nodiscard]] bool knows(const ReferenceQuery& reference) const;

    struct Result {
        const Answer& answer;  // valid until the next call
        DeclaredQuery& query;
    };
    // REQUIRES: a snapshot of the database is open and has no failure; knows(reference).
    [[nodiscard]] Result run(const ReferenceQuery& reference, const relay2::IProgress* progress);

  private:
    [[nodiscard]] DeclaredQuery& queryFor(const QueryDeclaration& declaration);
    void dropStatements();

    const std::shared_ptr<Database> m_database;
    const std::shared_ptr<const Declarations> m_declarations;
    FilterList m_filters;
    std::vector<std::unique_ptr<DeclaredQuery>> m_queries;  // by the declaration's index; made on first use
    std::uint64_t m_epoch = 0;
    std::size_t m_withStatements = 0;
};

}  // namespace tessera_host
