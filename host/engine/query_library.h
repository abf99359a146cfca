// The query library of a pane.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "host/document/declarations.h"
#include "host/engine/reference_query.h"
#include "platform/basekit2/ref_counted.h"
#include "platform/qlib_1/query_library.h"

namespace tessera_host {

// Builds queries from the references of a document to its own declarations. Equal references share one
// object, so a row set costs little more than the look-ups of its references. One library a pane: the diagram
// library calls it under its handler's lock, so it locks nothing itself.
class QueryLibrary final : public basekit2::ref_counted_t<qlib_1::IQueryLibrary> {
  public:
    // REQUIRES: `declarations` is not null. The queries that the library makes keep them alive as well.
    explicit QueryLibrary(std::shared_ptr<const Declarations> declarations);

    basekit2::sptr_t<basekit2::IObject> queryInterface(basekit2::type_id_t id) override;

    // A vector query whose members are the "queryRef" children of `definition` that have text, in their
    // order; without any, a vector query without members. Empty when one of them is not a reference to a
    // declared query, which is posted to `messenger` at the element's position, unless that is null.
    [[nodiscard]] qlib_1::sptr_t<qlib_1::IQuery> buildQuery(const basekit2::variant_bag_t& definition,
                                                            relay2::IMessenger* messenger) override;

    // "RootGrouping" is always the built-in single total; any other name is the id of a declared query
    // without keys. Empty when there is none; nothing is posted then.
    [[nodiscard]] qlib_1::sptr_t<qlib_1::IQuery> getQuery(const std::string& name) override;

  private:
    // The object of the reference `text`; equal references have one.
    [[nodiscard]] Expected<qlib_1::sptr_t<qlib_1::IQuery>> find(std::string_view text);

    const std::shared_ptr<ReferencePool> m_pool;
    // By identifier; the keys belong to the objects.
    std::unordered_map<std::string_view, qlib_1::sptr_t<qlib_1::IQuery>> m_references;
    const qlib_1::sptr_t<qlib_1::IQuery> m_rootGrouping;
};

// True for the built-in grouping of any library: a query with its name that is not a reference to a declared
// one. False for an empty pointer. Any thread.
[[nodiscard]] bool isRootGrouping(const qlib_1::sptr_t<qlib_1::IQuery>& query);

}  // namespace tessera_host
