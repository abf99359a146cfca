#include "host/engine/query_library.h"

#include <utility>
#include <vector>

#include "host/document/text.h"
#include "platform/basekit2/object_registry.h"

namespace tessera_host {
namespace {

using basekit2::sptr_t;
using qlib_1::IQuery;

constexpr const char* rootGroupingName = "RootGrouping";

// The grouping that makes a single row of all values; no other is supported.
class RootGrouping final : public basekit2::ref_counted_t<IQuery> {
  public:
    sptr_t<basekit2::IObject> queryInterface(basekit2::type_id_t id) override {
        if (id == IQuery::typeId) return sptr_t<basekit2::IObject>::share(this);
        return nullptr;
    }
    std::string getIdentifier() const override { return rootGroupingName; }
};

void tellWrong(relay2::IMessenger* messenger, const basekit2::variant_bag_t& element,
               const std::string& reason) {
    if (messenger == nullptr) return;
    messenger->post(relay2::severity_t::error,
                    "The reference " + quoted(element.get_text("")) + " is wrong: " + reason + ".",
                    element.position());
}

}  // namespace

QueryLibrary::QueryLibrary(std::shared_ptr<const Declarations> declarations)
    : m_pool(std::make_shared<ReferencePool>(std::move(declarations))),
      m_rootGrouping(basekit2::make_counted<RootGrouping>()) {}

sptr_t<basekit2::IObject> QueryLibrary::queryInterface(basekit2::type_id_t id) {
    if (id == qlib_1::IQueryLibrary::typeId) return sptr_t<basekit2::IObject>::share(this);
    return nullptr;
}

Expected<sptr_t<IQuery>> QueryLibrary::find(std::string_view text) {
    // Equal references are one object, so that each is parsed once. The keys view the objects' identifiers.
    if (text.starts_with('/'))
        if (const auto it = m_references.find(text.substr(1)); it != m_references.end()) return it->second;
    auto reference = m_pool->declarations->parseReference(text);
    if (!reference) return std::move(reference).error();
    auto query =
        basekit2::make_counted<ReferenceQuery>(m_pool, *std::move(reference), std::string(text.substr(1)));
    const std::string_view key = query->identifier();
    return m_references.emplace(key, std::move(query)).first->second;
}

sptr_t<IQuery> QueryLibrary::buildQuery(const basekit2::variant_bag_t& definition,
                                        relay2::IMessenger* messenger) {
    std::vector<sptr_t<IQuery>> members;
    for (auto child = definition.begin(); !child.at_end(); child.next()) {
        if (child.get_name() != "queryRef") continue;
        const std::string_view text = child.get_value().get_text("");
        if (text.empty()) continue;
        // One wrong reference leaves the whole row set without values; only the first is reported.
        auto member = find(text);
        if (!member) {
            tellWrong(messenger, child.get_value(), member.error().text);
            return nullptr;
        }
        members.push_back(*std::move(member));
    }
    return qlib_1::IVectorQuery::create(std::move(members));
}

sptr_t<IQuery> QueryLibrary::getQuery(const std::string& name) {
    if (name == rootGroupingName) return m_rootGrouping;
    const QueryDeclaration* declaration = m_pool->declarations->find(name);
    // A name alone gives no key values.
    if (declaration == nullptr || !declaration->keys.empty()) return nullptr;
    auto query = find("/" + name);
    return query ? *std::move(query) : nullptr;
}

// A query of the document may be called "RootGrouping", too, so the name alone does not decide.
bool isRootGrouping(const sptr_t<IQuery>& query) {
    if (query.is_null() || query->getIdentifier() != rootGroupingName) return false;
    return basekit2::object_registry_t::process().query<ReferenceQuery>(query).is_null();
}

}  // namespace tessera_host
