// The host's query library.
#pragma once

#include <string>

#include "platform/basekit2/variant_bag.h"
#include "platform/qlib_1/query.h"
#include "platform/relay2/messenger.h"

namespace qlib_1 {

// Knows the queries of a pane and makes them from the definitions in its document. Implemented by the host. A
// handler keeps a reference for its life and calls it under its own lock, one thread at a time; a library
// that several handlers share is called by several threads. It runs no query: that is the engine's task.
class IQueryLibrary : public basekit2::IObject {
  public:
    static constexpr basekit2::type_id_t typeId{"qlib_1::IQueryLibrary"};

    // Builds the query that `definition` describes. The diagram library calls it during "create", once for
    // each row set, and needs a vector query with one member for each "queryRef" child that has text, in
    // their order; one without members is accepted.
    // - `definition` is only read during the call. Its position() and those of its children are places in
    //   the document, for messages.
    // - Empty when the definition is not acceptable. What is wrong with it has then been posted to
    //   `messenger`, unless that is null; the row set stays without query and without values, and "create"
    //   continues.
    [[nodiscard]] virtual sptr_t<IQuery> buildQuery(const basekit2::variant_bag_t& definition,
                                                    relay2::IMessenger* messenger) = 0;

    // The query called `name`, or an empty pointer, which is not reported here. "RootGrouping", the single
    // total over all rows, is one that every library must have: the diagram library gets it before each query
    // that it runs, and without it no value is fetched.
    [[nodiscard]] virtual sptr_t<IQuery> getQuery(const std::string& name) = 0;

  protected:
    ~IQueryLibrary() override = default;
};

}  // namespace qlib_1
