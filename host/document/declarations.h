// The queries and filters that a viewpoint document declares, and references to those queries.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/document/filters.h"
#include "host/document/problem.h"
#include "host/error.h"
#include "host/values/cell_format.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

// One <query> of the document.
struct QueryDeclaration {
    std::size_t index = 0;  // its place among the declarations
    std::string id;
    std::string from;               // a table or view
    std::string expression;         // SQL, an aggregate over its rows
    std::string where;              // SQL, a predicate; may be empty
    std::vector<std::string> keys;  // names of the columns whose values a reference gives
    CellFormat format;              // plain when the document names none, or one that is unknown
    std::string unit;               // written after the value; may be empty
    basekit2::source_position_t position;
};

// What a reference names: the declared query over the rows whose key columns have these values.
struct Reference {
    const QueryDeclaration* declaration = nullptr;  // of the Declarations that parsed it; never null then
    std::vector<std::string> keys;                  // as many as the declaration has
};

// Unchanging once read, so any thread may use it. References point into it: keep it by the shared pointer.
class Declarations {
  public:
    // Reads every <query> and <filter> below the <queries> and <filters> children of `viewpoint`. What cannot
    // be taken as it is written is listed in problems() and keeps nothing else from being read: a query
    // without an id and a filter without a name are left out, an unknown format is taken as plain. Whether
    // SQL is right is not looked at.
    [[nodiscard]] static std::shared_ptr<const Declarations> read(const basekit2::variant_bag_t& viewpoint);

    Declarations(const Declarations&) = delete;
    Declarations& operator=(const Declarations&) = delete;

    // In the document's order, with every query of an id that occurs twice.
    [[nodiscard]] const std::vector<QueryDeclaration>& queries() const noexcept { return m_queries; }
    // The last query that has this id, or null. Constant time.
    [[nodiscard]] const QueryDeclaration* find(std::string_view id) const;
    // The document's filters; of several with one name the last counts.
    [[nodiscard]] const Filters& filters() const noexcept { return m_filters; }
    [[nodiscard]] const std::vector<Problem>& problems() const noexcept { return m_problems; }

    // Reads "/ID" or "/ID/KEY/KEY", where the keys are percent-encoded. When all that follows the first "/"
    // is the id of a query without keys, that is meant; otherwise the id ends at the next "/". The
    // error's text completes "TEXT is not a reference: ". Linear time.
    [[nodiscard]] Expected<Reference> parseReference(std::string_view text) const;

  private:
    Declarations() = default;

    void readQuery(const basekit2::variant_bag_t& element);
    void readFilter(const basekit2::variant_bag_t& element);
    void buildIndex();
    void report(const basekit2::variant_bag_t& element, std::string text);

    std::vector<QueryDeclaration> m_queries;
    std::unordered_map<std::string_view, std::size_t> m_byId;  // the keys are the declarations' own ids
    Filters m_filters;
    std::vector<Problem> m_problems;
};

}  // namespace tessera_host
