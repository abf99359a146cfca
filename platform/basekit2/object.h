// The root of all reference-counted host interfaces.
//
// A host implements an interface by deriving from ref_counted_t<IThatInterface> (ref_counted.h), makes
// objects with make_counted() and passes them as sptr_t. None of the members here is called directly by
// users: sptr_t counts, and object_registry_t::query() finds interfaces.
#pragma once

#include <string_view>

#include "platform/basekit2/sptr.h"
#include "platform/export.h"

namespace basekit2 {

// Names an interface across library borders: "namespace::IName". Two ids are equal when their texts are
// equal, wherever in memory they are. Each interface has its id as `static constexpr type_id_t typeId`.
struct type_id_t {
    std::string_view name;  // not owned: a literal

    friend bool operator==(const type_id_t&, const type_id_t&) = default;
};

// Base of every host interface. Implementations count their references (see ref_counted_t) and delete
// themselves with the last one, on the thread that releases it; that may be a thread of the host that holds
// the lock of a handler. All members may be called on any thread.
class TESSERA_PLATFORM_EXPORT IObject {
  public:
    // Both are balanced by their caller. Neither takes a lock nor calls back, a destructor that
    // releaseReference() runs apart.
    virtual void addReference() const noexcept = 0;
    virtual void releaseReference() const noexcept = 0;

    // Finds another interface of the object, or the one that it is. Returns
    // - the IObject base of that interface, when the object has it. It may be an object of its own, which
    //   then may outlive this one;
    // - an IRemoteObject, when the interface is implemented elsewhere and reached through a proxy;
    // - an empty pointer otherwise, which is what the inherited behaviour always returns: an implementation
    //   overrides it and lists its own typeId too.
    // The caller owns the reference. The same id gives the same result as long as the object lives. Callers
    // use object_registry_t::query, which turns a remote result into its proxy.
    virtual sptr_t<IObject> queryInterface(type_id_t id);

    // The object itself when it is a handle of something remote; null (the default) when it is local. No
    // reference is taken.
    virtual class IRemoteObject* asRemote() noexcept { return nullptr; }

  protected:
    virtual ~IObject() = default;
};

// Handle of an object outside of the process, or one that the host reaches through a transport of its own. It
// offers none of that object's operations itself: the host registers a proxy that wraps the handle and
// implements them (object_registry_t::register_proxy).
class TESSERA_PLATFORM_EXPORT IRemoteObject : public IObject {
  public:
    IRemoteObject* asRemote() noexcept final { return this; }

    // The interface that the far side implements. For diagnosis and for proxies that serve several
    // interfaces.
    virtual type_id_t remoteType() const noexcept = 0;
};

}  // namespace basekit2
