#include "platform/qlib_1/query.h"

#include <utility>

#include "platform/basekit2/object_registry.h"
#include "platform/basekit2/ref_counted.h"

namespace qlib_1 {
namespace {

// Unchanging: pushBack() makes a new one.
class vector_query_t final : public basekit2::ref_counted_t<IVectorQuery> {
  public:
    explicit vector_query_t(std::vector<sptr_t<IQuery>> members) : m_members(std::move(members)) {}

    sptr_t<basekit2::IObject> queryInterface(basekit2::type_id_t id) override {
        if (id == IVectorQuery::typeId || id == IQuery::typeId) return sptr_t<basekit2::IObject>::share(this);
        return nullptr;
    }
    std::string getIdentifier() const override { return {}; }
    std::size_t size() const noexcept override { return m_members.size(); }
    sptr_t<IQuery> at(std::size_t index) const override { return m_members[index]; }

  private:
    std::vector<sptr_t<IQuery>> m_members;
};

}  // namespace

sptr_t<IVectorQuery> IVectorQuery::cast(const sptr_t<IQuery>& query) {
    return basekit2::object_registry_t::process().query<IVectorQuery>(query);
}

sptr_t<IVectorQuery> IVectorQuery::pushBack(const sptr_t<IVectorQuery>& vector, const sptr_t<IQuery>& query) {
    if (query.is_null()) return nullptr;
    std::vector<sptr_t<IQuery>> members;
    const std::size_t size = vector.is_null() ? 0 : vector->size();
    members.reserve(size + 1);
    for (std::size_t i = 0; i < size; ++i)
        members.push_back(vector->at(i));
    members.push_back(query);
    return create(std::move(members));
}

sptr_t<IVectorQuery> IVectorQuery::create(std::vector<sptr_t<IQuery>> members) {
    return basekit2::make_counted<vector_query_t>(std::move(members));
}

}  // namespace qlib_1
