// The host's query library.
#pragma once

#include <string>

#include "platform/basekit2/variant_bag.h"
#include "platform/qlib_1/query.h"
#include "platform/relay2/messenger.h"

namespace qlib_1 {

// Knows the queries of a pane. Implemented by the host; a handler keeps a reference for its life and calls it
// under its own lock, one thread at a time.
class IQueryLibrary : public basekit2::IObject {
  public:
    static constexpr basekit2::type_id_t typeId{"qlib_1::IQueryLibrary"};

    // Builds the query that `definition` describes (for a row set: a vector query with one member a
    // "queryRef"). Empty when the definition is not acceptable; what is wrong with it has then been told to
    // `messenger`, unless that is null. `definition` is only read during the call.
    [[nodiscard]] virtual sptr_t<IQuery> buildQuery(const basekit2::variant_bag_t& definition,
                                                    relay2::IMessenger* messenger) = 0;

    // The query called `name`, or empty. "RootGrouping", the single total over all rows, is one that every
    // library has.
    [[nodiscard]] virtual sptr_t<IQuery> getQuery(const std::string& name) = 0;

  protected:
    ~IQueryLibrary() override = default;
};

}  // namespace qlib_1
