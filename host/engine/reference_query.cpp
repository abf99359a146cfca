#include "host/engine/reference_query.h"

#include <string_view>
#include <utility>

namespace tessera_host {

void appendKey(KeyText& text, std::string_view key) {
    text.append(std::to_string(key.size())).append(":").append(key);
}

KeyText keyTextOf(const KeyValues& keys) {
    KeyText text;
    for (const std::string& key : keys)
        appendKey(text, key);
    return text;
}

namespace {

const KeyChoices::value_type* entered(ReferencePool& pool, Reference& reference) {
    KeyText name = keyTextOf(reference.keys);
    return &*pool.wanted[reference.declaration->index]
                 .try_emplace(std::move(name), std::move(reference.keys))
                 .first;
}

}  // namespace

ReferenceQuery::ReferenceQuery(std::shared_ptr<ReferencePool> pool, Reference reference,
                               std::string identifier)
    : m_pool(std::move(pool)),
      m_declaration(reference.declaration),
      m_identifier(std::move(identifier)),
      m_choice(entered(*m_pool, reference)) {}

basekit2::sptr_t<basekit2::IObject> ReferenceQuery::queryInterface(basekit2::type_id_t id) {
    if (id == qlib_1::IQuery::typeId || id == typeId) return basekit2::sptr_t<basekit2::IObject>::share(this);
    return nullptr;
}

}  // namespace tessera_host
