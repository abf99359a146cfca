// The root of all reference-counted host interfaces.
#pragma once

#include <string_view>

#include "platform/basekit2/sptr.h"
#include "platform/export.h"

namespace basekit2 {

// Names an interface across library borders. Two ids are equal when their texts are equal.
struct type_id_t {
    std::string_view name;

    friend bool operator==(const type_id_t&, const type_id_t&) = default;
};

// Base of every host interface. Implementations count their references (see ref_counted_t) and delete
// themselves with the last one. All members may be called on any thread.
class TESSERA_PLATFORM_EXPORT IObject {
  public:
    virtual void addReference() const noexcept = 0;
    virtual void releaseReference() const noexcept = 0;

    // Asks the object for another of its interfaces. Answers
    //  - the IObject base of that interface, when the object has it,
    //  - an IRemoteObject, when the interface lives elsewhere and is reached through a proxy,
    //  - an empty pointer otherwise.
    // Callers use object_registry_t::query, which turns a remote answer into its proxy.
    virtual sptr_t<IObject> queryInterface(type_id_t id);

    // The object itself when it is a handle of something remote; null (the default) when it is local.
    virtual class IRemoteObject* asRemote() noexcept { return nullptr; }

  protected:
    virtual ~IObject() = default;
};

// Handle of an object that lives outside of the process or behind a transport of the host's own.
class TESSERA_PLATFORM_EXPORT IRemoteObject : public IObject {
  public:
    IRemoteObject* asRemote() noexcept final { return this; }

    // The interface that the far side implements; its registered proxy wraps this handle.
    virtual type_id_t remoteType() const noexcept = 0;
};

}  // namespace basekit2
