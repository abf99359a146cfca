#include "platform/basekit2/object_registry.h"

namespace basekit2 {

sptr_t<IObject> IObject::queryInterface(type_id_t) {
    return nullptr;
}

object_registry_t& object_registry_t::process() {
    static object_registry_t registry;
    return registry;
}

void object_registry_t::register_proxy(type_id_t id, proxy_factory_t factory) {
    const std::scoped_lock lock(m_mutex);
    m_proxies.insert_or_assign(std::string(id.name), factory);
}

sptr_t<IObject> object_registry_t::query(const sptr_t<IObject>& object, type_id_t id) const {
    if (object.is_null()) return nullptr;
    sptr_t<IObject> found = object->queryInterface(id);
    if (found.is_null() || found->asRemote() == nullptr) return found;

    // The factory is called without the lock, since it may use the registry.
    proxy_factory_t factory = nullptr;
    {
        const std::scoped_lock lock(m_mutex);
        if (const auto it = m_proxies.find(std::string(id.name)); it != m_proxies.end()) factory = it->second;
    }
    if (factory == nullptr) return nullptr;
    return factory(std::move(found));
}

}  // namespace basekit2
