// Finds interfaces of host objects by type id and wraps remote ones in their proxies.
#pragma once

#include <mutex>
#include <string>
#include <unordered_map>

#include "platform/basekit2/object.h"

namespace basekit2 {

// One registry serves the process. Every member may be called on any thread. It holds no reference on any
// object; what it keeps is the proxy factories, for the life of the process.
class TESSERA_PLATFORM_EXPORT object_registry_t {
  public:
    // Makes the local proxy of a remote object. Returns the IObject base of the interface it is registered
    // for, or empty when it cannot serve that handle. Called on the thread of query(), under no lock, each
    // time that the interface is queried; the proxy keeps the reference `remote`.
    using proxy_factory_t = sptr_t<IObject> (*)(sptr_t<IObject> remote);

    // The registry of this process; made on first use.
    static object_registry_t& process();

    // Registers the proxy of an interface; a later registration replaces an earlier one, and null removes it.
    // The host calls it before it hands out remote objects. The code of `factory` must stay loaded.
    void register_proxy(type_id_t id, proxy_factory_t factory);

    // The interface `id` of `object`: its own, or a proxy when it is remote and a proxy is registered. Empty
    // when `object` is empty, does not offer the interface, or is remote without a registered proxy; nothing
    // is reported then. The caller owns the reference. The object's queryInterface() runs under no lock of
    // the registry.
    [[nodiscard]] sptr_t<IObject> query(const sptr_t<IObject>& object, type_id_t id) const;

    // Typed form, the one to use. T offers `static constexpr type_id_t typeId` and derives from IObject
    // without virtual bases. The object's promise that it is a T under that id is trusted, not tested.
    template <class T, class U>
    [[nodiscard]] sptr_t<T> query(const sptr_t<U>& object) const {
        sptr_t<IObject> found = query(sptr_t<IObject>(object), T::typeId);
        return sptr_t<T>::adopt(static_cast<T*>(found.detach()));
    }

  private:
    mutable std::mutex m_mutex;
    std::unordered_map<std::string, proxy_factory_t> m_proxies;
};

}  // namespace basekit2
