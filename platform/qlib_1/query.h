// Queries, alone and in vectors.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/basekit2/object.h"
#include "platform/export.h"

namespace qlib_1 {

using basekit2::sptr_t;

// A question to a result, not yet run: it holds no values and no connection. Made by the host's query library
// and handed back to the host's engine, which alone knows what is in it; everything in between sees only the
// identifier. Unchanging, so any thread may use it; it may outlive the library that made it.
class IQuery : public basekit2::IObject {
  public:
    static constexpr basekit2::type_id_t typeId{"qlib_1::IQuery"};

    // The name by which rows of a diagram refer to this query, without the leading "/". The diagram library
    // compares it byte by byte with the references of the document. Of a vector query: "".
    [[nodiscard]] virtual std::string getIdentifier() const = 0;

  protected:
    ~IQuery() override = default;
};

// An ordered list of queries that is itself a query: as the columns of a table-tree query it makes one column
// for each member, as its row grouping one level of rows for each member. Unchanging. It keeps a reference on
// each of its members. A host makes it with create(); it need not implement the interface itself.
class TESSERA_PLATFORM_EXPORT IVectorQuery : public IQuery {
  public:
    static constexpr basekit2::type_id_t typeId{"qlib_1::IVectorQuery"};

    // The number of members; 0 is possible.
    [[nodiscard]] virtual std::size_t size() const noexcept = 0;
    // The member at `index`, counted from 0. REQUIRES: index < size(). The vector keeps its reference, the
    // caller gets one of its own. Never empty in a vector that create() made.
    [[nodiscard]] virtual sptr_t<IQuery> at(std::size_t index) const = 0;

    // `query` as a vector query: the same object with one more reference. Empty when it is a single query, or
    // empty itself. The object is reached through the object registry, so a remote one gives its proxy.
    [[nodiscard]] static sptr_t<IVectorQuery> cast(const sptr_t<IQuery>& query);

    // A new vector query: the members of `vector` (which may be empty and is left alone), then `query`. Empty
    // when `query` is empty. Copies the list, so a long one is better built with create().
    [[nodiscard]] static sptr_t<IVectorQuery> pushBack(const sptr_t<IVectorQuery>& vector,
                                                       const sptr_t<IQuery>& query);

    // A new vector query of these members; never empty itself. REQUIRES: no member is an empty pointer.
    [[nodiscard]] static sptr_t<IVectorQuery> create(std::vector<sptr_t<IQuery>> members);

  protected:
    ~IVectorQuery() override = default;
};

}  // namespace qlib_1
