// Finding interfaces of host objects: local ones, remote ones with a proxy, and remote ones without.
#include <gtest/gtest.h>

#include <string>

#include "platform/basekit2/object_registry.h"
#include "platform/basekit2/ref_counted.h"

namespace tessera_test {
namespace {

using basekit2::IObject;
using basekit2::make_counted;
using basekit2::object_registry_t;
using basekit2::sptr_t;
using basekit2::type_id_t;

int alive = 0;  // objects of this test

class INamed : public IObject {
  public:
    static constexpr type_id_t typeId{"tessera_test::INamed"};
    virtual std::string name() const = 0;

  protected:
    INamed() { ++alive; }
    ~INamed() override { --alive; }
};

class Local final : public basekit2::ref_counted_t<INamed> {
  public:
    sptr_t<IObject> queryInterface(type_id_t id) override {
        return id == INamed::typeId ? sptr_t<IObject>::share(this) : nullptr;
    }
    std::string name() const override { return "local"; }
};

class Remote final : public basekit2::ref_counted_t<basekit2::IRemoteObject> {
  public:
    Remote() { ++alive; }
    ~Remote() override { --alive; }
    type_id_t remoteType() const noexcept override { return INamed::typeId; }
};

// A local object whose INamed lives elsewhere.
class Front final : public basekit2::ref_counted_t<IObject> {
  public:
    sptr_t<IObject> queryInterface(type_id_t id) override {
        return id == INamed::typeId ? sptr_t<IObject>(make_counted<Remote>()) : nullptr;
    }
};

class Proxy final : public basekit2::ref_counted_t<INamed> {
  public:
    explicit Proxy(sptr_t<IObject> remote) : m_remote(std::move(remote)) {}
    std::string name() const override {
        return "proxy of " +
               std::string(m_remote->asRemote() ? m_remote->asRemote()->remoteType().name : "nothing");
    }

  private:
    sptr_t<IObject> m_remote;
};

struct ObjectRegistry : testing::Test {
    ~ObjectRegistry() override {
        registry.register_proxy(INamed::typeId, nullptr);
        EXPECT_EQ(alive, 0) << "a reference was lost";
    }
    object_registry_t& registry = object_registry_t::process();
};

TEST_F(ObjectRegistry, ThereIsOneForTheProcess) {
    EXPECT_EQ(&object_registry_t::process(), &registry);
}

TEST_F(ObjectRegistry, EmptyObjectGivesEmpty) {
    EXPECT_TRUE(registry.query(nullptr, INamed::typeId).is_null());
    EXPECT_TRUE(registry.query<INamed>(sptr_t<IObject>()).is_null());
}

TEST_F(ObjectRegistry, LocalObjectReturnsItsOwnInterface) {
    const auto object = make_counted<Local>();
    const auto named = registry.query<INamed>(object);
    ASSERT_FALSE(named.is_null());
    EXPECT_EQ(named.get(), static_cast<INamed*>(object.get()));
    EXPECT_EQ(named->name(), "local");
}

TEST_F(ObjectRegistry, LocalObjectWithoutTheInterfaceGivesEmpty) {
    const auto object = make_counted<Local>();
    EXPECT_TRUE(registry.query(object, type_id_t{"tessera_test::IOther"}).is_null());
}

TEST_F(ObjectRegistry, ObjectsOfferNothingUnlessTheySaySo) {
    class Silent final : public basekit2::ref_counted_t<IObject> {};
    EXPECT_TRUE(registry.query(make_counted<Silent>(), INamed::typeId).is_null());
    EXPECT_EQ(make_counted<Silent>()->asRemote(), nullptr);
}

TEST_F(ObjectRegistry, TypeIdsAreEqualWhenTheirTextsAre) {
    const std::string text(INamed::typeId.name);
    EXPECT_FALSE(registry.query(make_counted<Local>(), type_id_t{text}).is_null());
    EXPECT_FALSE((type_id_t{"a"} == type_id_t{"b"}));
}

TEST_F(ObjectRegistry, RemoteObjectIsWrappedInItsRegisteredProxy) {
    registry.register_proxy(INamed::typeId, [](sptr_t<IObject> remote) -> sptr_t<IObject> {
        return make_counted<Proxy>(std::move(remote));
    });
    const auto named = registry.query<INamed>(make_counted<Front>());
    ASSERT_FALSE(named.is_null());
    EXPECT_EQ(named->name(), "proxy of tessera_test::INamed");
}

TEST_F(ObjectRegistry, RemoteObjectWithoutAProxyGivesEmpty) {
    EXPECT_TRUE(registry.query<INamed>(make_counted<Front>()).is_null());
}

TEST_F(ObjectRegistry, ProxyOfAnotherInterfaceDoesNotServe) {
    registry.register_proxy(type_id_t{"tessera_test::IOther"}, [](sptr_t<IObject> remote) { return remote; });
    EXPECT_TRUE(registry.query<INamed>(make_counted<Front>()).is_null());
}

TEST_F(ObjectRegistry, ProxyThatCannotServeTheHandleGivesEmpty) {
    registry.register_proxy(INamed::typeId, [](sptr_t<IObject>) { return sptr_t<IObject>(); });
    EXPECT_TRUE(registry.query<INamed>(make_counted<Front>()).is_null());
}

TEST_F(ObjectRegistry, LaterRegistrationReplacesTheEarlier) {
    registry.register_proxy(INamed::typeId, [](sptr_t<IObject>) { return sptr_t<IObject>(); });
    registry.register_proxy(INamed::typeId,
                            [](sptr_t<IObject>) -> sptr_t<IObject> { return make_counted<Local>(); });
    const auto named = registry.query<INamed>(make_counted<Front>());
    ASSERT_FALSE(named.is_null());
    EXPECT_EQ(named->name(), "local");
}

TEST_F(ObjectRegistry, LocalObjectNeedsNoProxyEvenWhenOneIsRegistered) {
    registry.register_proxy(INamed::typeId, [](sptr_t<IObject>) { return sptr_t<IObject>(); });
    EXPECT_FALSE(registry.query<INamed>(make_counted<Local>()).is_null());
}

}  // namespace
}  // namespace tessera_test
