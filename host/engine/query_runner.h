// Runs the references of one document in the snapshots of a result.
#pragma once

#include <memory>
#include <vector>

#include "host/engine/declared_query.h"

namespace tessera_host {

// Keeps the declared queries as long as the filters stay the same. Used by one thread at a time.
class QueryRunner {
  public:
    explicit QueryRunner(std::shared_ptr<const Declarations> declarations)
        : m_declarations(std::move(declarations)) {}
    QueryRunner(const QueryRunner&) = delete;
    QueryRunner& operator=(const QueryRunner&) = delete;

    // The filters that apply from now on. Other filters than before drop all declared queries and the values
    // that they remember; equal ones keep them.
    void setFilters(FilterList filters);

    // True when `reference` is to one of this runner's declarations.
    [[nodiscard]] bool knows(const ReferenceQuery& reference) const;

    // The query of the reference, under the filters; made on first use. The runner owns it, until the next
    // setFilters(). REQUIRES: knows(reference).
    [[nodiscard]] DeclaredQuery& queryFor(const ReferenceQuery& reference);

  private:
    const std::shared_ptr<const Declarations> m_declarations;
    FilterList m_filters;
    std::vector<std::unique_ptr<DeclaredQuery>> m_queries;  // by the declaration's index; made on first use
};

}  // namespace tessera_host
