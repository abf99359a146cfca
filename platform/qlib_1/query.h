// Queries, alone and in vectors.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/basekit2/object.h"
#include "platform/export.h"

namespace qlib_1 {

using basekit2::sptr_t;

// A question to a result. Made by the host's query library; unchanging, so any thread may use it.
class IQuery : public basekit2::IObject {
  public:
    static constexpr basekit2::type_id_t typeId{"qlib_1::IQuery"};

    // The name by which rows of a diagram refer to this query, without the leading "/". Of a vector query:
    // "".
    [[nodiscard]] virtual std::string getIdentifier() const = 0;

  protected:
    ~IQuery() override = default;
};

// An ordered list of queries that is a query itself: as the columns of a table-tree query it makes one column
// a member, as its row grouping one level of rows a member. Unchanging.
class TESSERA_PLATFORM_EXPORT IVectorQuery : public IQuery {
  public:
    static constexpr basekit2::type_id_t typeId{"qlib_1::IVectorQuery"};

    [[nodiscard]] virtual std::size_t size() const noexcept = 0;
    // REQUIRES: index < size(). The vector keeps its reference, the caller gets one of its own.
    [[nodiscard]] virtual sptr_t<IQuery> at(std::size_t index) const = 0;

    // `query` as a vector query; empty when it is none or empty itself.
    [[nodiscard]] static sptr_t<IVectorQuery> cast(const sptr_t<IQuery>& query);

    // A new vector query: the members of `vector` (which may be empty and is left alone), then `query`. Empty
    // when `query` is empty.
    [[nodiscard]] static sptr_t<IVectorQuery> pushBack(const sptr_t<IVectorQuery>& vector,
                                                       const sptr_t<IQuery>& query);

    // A new vector query of these members, none of which may be empty.
    [[nodiscard]] static sptr_t<IVectorQuery> create(std::vector<sptr_t<IQuery>> members);

  protected:
    ~IVectorQuery() override = default;
};

}  // namespace qlib_1
