// Intrusive reference-counted pointer to host interfaces.
//
// A parameter `sptr_t<T>` by value gives the callee a reference of its own; `const sptr_t<T>&` lends the
// caller's for the call. A returned sptr_t is the caller's. Empty pointers are allowed wherever a comment
// says so, and only there.
#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

namespace basekit2 {

// Holds one reference on a T, which offers addReference() and releaseReference(). There is no way to make one
// from a bare pointer by accident: adopt() takes over the caller's reference, share() takes a further one.
// Distinct sptr_t objects may be used on several threads at once, also when they point to one T; one sptr_t
// object may not.
template <class T>
class sptr_t {
  public:
    constexpr sptr_t() noexcept = default;
    constexpr sptr_t(std::nullptr_t) noexcept {}  // NOLINT(google-explicit-constructor): as of any pointer

    // Takes over a reference that the caller owns (for example that of a newly made object). Null gives an
    // empty pointer.
    [[nodiscard]] static sptr_t adopt(T* object) noexcept { return sptr_t(object); }
    // Takes a reference of its own; the caller keeps whatever it had. An object hands itself out this way:
    // share(this). Null gives an empty pointer.
    [[nodiscard]] static sptr_t share(T* object) noexcept {
        if (object) object->addReference();
        return sptr_t(object);
    }

    // Copies take a further reference, moves leave `other` empty.
    sptr_t(const sptr_t& other) noexcept : sptr_t(share(other.m_object)) {}
    sptr_t(sptr_t&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    // A pointer to a derived interface is one to its base, as with bare pointers.
    // NOLINTBEGIN(google-explicit-constructor)
    template <class U>
    sptr_t(const sptr_t<U>& other) noexcept requires(std::is_convertible_v<U*, T*>)
        : sptr_t(share(other.get())) {}
    template <class U>
    sptr_t(sptr_t<U>&& other) noexcept requires(std::is_convertible_v<U*, T*>) : m_object(other.detach()) {}
    // NOLINTEND(google-explicit-constructor)

    // The reference that was held is released last, so assigning a pointer to itself or to a part of what it
    // holds is safe.
    sptr_t& operator=(sptr_t other) noexcept {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~sptr_t() {
        if (m_object) m_object->releaseReference();
    }

    [[nodiscard]] bool is_null() const noexcept { return m_object == nullptr; }
    explicit operator bool() const noexcept { return m_object != nullptr; }
    // No reference is taken; valid as long as a reference is held. Null when empty.
    [[nodiscard]] T* get() const noexcept { return m_object; }
    // These REQUIRE that the pointer is not empty.
    T* operator->() const noexcept { return m_object; }
    T& operator*() const noexcept { return *m_object; }

    // Gives the reference to the caller, who has to release or adopt it; this pointer is empty afterwards.
    [[nodiscard]] T* detach() noexcept { return std::exchange(m_object, nullptr); }

    // Compares addresses: two interfaces of one object may differ.
    template <class U>
    friend bool operator==(const sptr_t& a, const sptr_t<U>& b) noexcept {
        return a.get() == b.get();
    }
    friend bool operator==(const sptr_t& a, std::nullptr_t) noexcept { return a.is_null(); }

  private:
    explicit sptr_t(T* object) noexcept : m_object(object) {}

    T* m_object = nullptr;
};

}  // namespace basekit2
