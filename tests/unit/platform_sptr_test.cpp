// The intrusive pointer: who takes and who releases a reference, and when.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/basekit2/ref_counted.h"
#include "platform/basekit2/sptr.h"

namespace tessera_test {
namespace {

using basekit2::make_counted;
using basekit2::sptr_t;

// Counts what is done to it and never deletes itself.
struct Base {
    void addReference() const noexcept { ++added; }
    void releaseReference() const noexcept { ++released; }
    mutable int added = 0;
    mutable int released = 0;
};
struct Other {
    int padding = 0;
};
struct Derived : Other, Base {};  // the conversion to Base moves the pointer

void expectCounts(const Base& object, int added, int released) {
    EXPECT_EQ(object.added, added);
    EXPECT_EQ(object.released, released);
}

TEST(Sptr, NewOneIsEmpty) {
    const sptr_t<Base> pointer, fromNull(nullptr);
    EXPECT_TRUE(pointer.is_null());
    EXPECT_FALSE(pointer);
    EXPECT_EQ(pointer.get(), nullptr);
    EXPECT_TRUE(pointer == nullptr);
    EXPECT_EQ(pointer, fromNull);
}

TEST(Sptr, BarePointersDoNotConvert) {
    static_assert(!std::is_constructible_v<sptr_t<Base>, Base*>);
    static_assert(!std::is_convertible_v<sptr_t<Base>, bool>);
    static_assert(!std::is_convertible_v<sptr_t<Base>, sptr_t<Derived>>);
    static_assert(std::is_convertible_v<sptr_t<Derived>, sptr_t<Base>>);
}

TEST(Sptr, AdoptTakesOverTheCallersReference) {
    Base object;
    {
        const auto pointer = sptr_t<Base>::adopt(&object);
        expectCounts(object, 0, 0);
        EXPECT_EQ(pointer.get(), &object);
        EXPECT_EQ(&*pointer, &object);
        EXPECT_EQ(pointer->added, 0);
        EXPECT_TRUE(pointer);
    }
    expectCounts(object, 0, 1);
}

TEST(Sptr, ShareTakesAReferenceOfItsOwn) {
    Base object;
    {
        const auto pointer = sptr_t<Base>::share(&object);
        expectCounts(object, 1, 0);
    }
    expectCounts(object, 1, 1);
}

TEST(Sptr, AdoptAndShareOfNullAreEmpty) {
    EXPECT_TRUE(sptr_t<Base>::adopt(nullptr).is_null());
    EXPECT_TRUE(sptr_t<Base>::share(nullptr).is_null());
}

TEST(Sptr, CopyTakesAReference) {
    Base object;
    {
        const auto pointer = sptr_t<Base>::adopt(&object);
        const sptr_t<Base> copy(pointer);  // NOLINT(performance-unnecessary-copy-initialization): under test
        expectCounts(object, 1, 0);
        EXPECT_EQ(copy, pointer);
    }
    expectCounts(object, 1, 2);
}

TEST(Sptr, MoveTakesNoReferenceAndEmptiesTheSource) {
    Base object;
    {
        auto pointer = sptr_t<Base>::adopt(&object);
        const sptr_t<Base> target(std::move(pointer));
        EXPECT_TRUE(pointer.is_null());  // NOLINT(bugprone-use-after-move): this is the rule under test
        EXPECT_EQ(target.get(), &object);
    }
    expectCounts(object, 0, 1);
}

TEST(Sptr, AssignmentReleasesTheFormerObject) {
    Base former, next;
    {
        auto pointer = sptr_t<Base>::adopt(&former);
        const auto source = sptr_t<Base>::adopt(&next);
        pointer = source;
        expectCounts(former, 0, 1);
        expectCounts(next, 1, 0);
        pointer = nullptr;
        expectCounts(next, 1, 1);
        EXPECT_TRUE(pointer.is_null());
    }
    expectCounts(former, 0, 1);
    expectCounts(next, 1, 2);
}

TEST(Sptr, SelfAssignmentKeepsTheObject) {
    Base object;
    {
        auto pointer = sptr_t<Base>::adopt(&object);
        pointer = std::as_const(pointer);
        EXPECT_EQ(pointer.get(), &object);
        EXPECT_EQ(object.added, object.released) << "one reference must be left";
    }
    EXPECT_EQ(object.released, object.added + 1);
}

TEST(Sptr, ConversionToABaseSharesOrMovesTheReference) {
    Derived object;
    {
        auto derived = sptr_t<Derived>::adopt(&object);
        const sptr_t<Base> shared(derived);
        EXPECT_EQ(shared.get(), static_cast<Base*>(&object));
        expectCounts(object, 1, 0);
        const sptr_t<Base> moved(std::move(derived));
        EXPECT_TRUE(derived.is_null());  // NOLINT(bugprone-use-after-move): this is the rule under test
        expectCounts(object, 1, 0);
        EXPECT_TRUE(shared == moved);
    }
    expectCounts(object, 1, 2);
}

TEST(Sptr, ConversionOfAnEmptyOneIsEmpty) {
    const sptr_t<Derived> derived;
    EXPECT_TRUE(sptr_t<Base>(derived).is_null());
}

TEST(Sptr, DetachGivesTheReferenceToTheCaller) {
    Base object;
    {
        auto pointer = sptr_t<Base>::adopt(&object);
        EXPECT_EQ(pointer.detach(), &object);
        EXPECT_TRUE(pointer.is_null());
        EXPECT_EQ(pointer.detach(), nullptr);
    }
    expectCounts(object, 0, 0);
}

TEST(Sptr, PointersAreEqualWhenTheyPointToOneObject) {
    Base a, b;
    const auto first = sptr_t<Base>::share(&a), same = sptr_t<Base>::share(&a),
               other = sptr_t<Base>::share(&b);
    EXPECT_TRUE(first == same);
    EXPECT_FALSE(first == other);
    EXPECT_FALSE(first == nullptr);
}

// An object of the usual counting.
class Counted final : public basekit2::ref_counted_t<basekit2::IObject> {
  public:
    explicit Counted(std::atomic<int>& destroyed) : m_destroyed(destroyed) {}
    ~Counted() override { ++m_destroyed; }

  private:
    std::atomic<int>& m_destroyed;
};

TEST(RefCounted, NewObjectHasTheOneReferenceOfItsMaker) {
    std::atomic<int> destroyed{0};
    {
        auto pointer = make_counted<Counted>(destroyed);
        const sptr_t<basekit2::IObject> further(pointer);
        pointer = nullptr;
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 1);
}

TEST(RefCounted, LastOfManyThreadsDeletesTheObjectOnce) {
    std::atomic<int> destroyed{0};
    {
        const auto pointer = make_counted<Counted>(destroyed);
        std::vector<std::jthread> threads;
        for (int i = 0; i < 8; ++i)
            threads.emplace_back([pointer] {
                for (int round = 0; round < 10'000; ++round) {
                    const sptr_t<basekit2::IObject> copy(pointer);
                    if (copy.is_null()) return;
                }
            });
    }
    EXPECT_EQ(destroyed, 1);
}

}  // namespace
}  // namespace tessera_test
