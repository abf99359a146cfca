// The queries that rows of a diagram refer to, as objects.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/engine/selection.h"
#include "platform/basekit2/ref_counted.h"
#include "platform/qlib_1/query.h"

namespace tessera_host {

// Names one choice of key values among the references of a declaration. Equal keys have equal texts, and
// different keys have different texts. For maps; not for people, and not SQL.
using KeyText = std::string;

[[nodiscard]] KeyText keyTextOf(const KeyValues& keys);
// Adds one key value to the text of those before it; keyTextOf does this for each value in turn.
void appendKey(KeyText& text, std::string_view key);

// Choices of key values, each once.
using KeyChoices = std::unordered_map<KeyText, KeyValues>;

// The distinct references that a query library has handed out. One for each library; its queries share it, so
// it lives as long as the last of them. Grows while the document is read, under the lock under which the
// library is called; values are fetched under the same lock.
struct ReferencePool {
    explicit ReferencePool(std::shared_ptr<const Declarations> read)
        : declarations(std::move(read)), wanted(declarations->queries().size()) {}

    std::shared_ptr<const Declarations> declarations;  // never null
    std::vector<KeyChoices> wanted;                    // by the index of the declaration
};

// One reference. Unchanging; keeps the declarations alive.
class ReferenceQuery final : public basekit2::ref_counted_t<qlib_1::IQuery> {
  public:
    static constexpr basekit2::type_id_t typeId{"tessera_host::ReferenceQuery"};

    // Enters the reference into `pool`. REQUIRES: the reference is one to a declaration of the pool.
    ReferenceQuery(std::shared_ptr<ReferencePool> pool, Reference reference, std::string identifier);

    basekit2::sptr_t<basekit2::IObject> queryInterface(basekit2::type_id_t id) override;
    [[nodiscard]] std::string getIdentifier() const override { return m_identifier; }

    // The reference without its leading "/"; valid as long as this query.
    [[nodiscard]] std::string_view identifier() const noexcept { return m_identifier; }
    [[nodiscard]] const QueryDeclaration& declaration() const noexcept { return *m_declaration; }
    [[nodiscard]] const KeyValues& keys() const noexcept { return m_choice->second; }
    [[nodiscard]] const KeyText& keyText() const noexcept { return m_choice->first; }
    // The key values of all references to the same declaration, this one among them.
    [[nodiscard]] const KeyChoices& siblings() const noexcept { return m_pool->wanted[m_declaration->index]; }

  private:
    const std::shared_ptr<ReferencePool> m_pool;
    const QueryDeclaration* const m_declaration;
    const std::string m_identifier;
    const KeyChoices::value_type* const m_choice;  // in the pool
};

}  // namespace tessera_host
