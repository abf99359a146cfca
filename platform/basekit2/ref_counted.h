// The usual implementation of IObject's counting, for those who implement host interfaces.
#pragma once

#include <atomic>
#include <cstdint>
#include <utility>

#include "platform/basekit2/object.h"

namespace basekit2 {

// Implements the reference count for a class that implements Interface. A new object starts with one
// reference, which make_counted() hands out; so an object is only ever made by make_counted(), never on the
// stack, as a member or in a shared pointer. The class makes its destructor protected or private, or is
// final. Objects cannot be copied.
template <class Interface>
class ref_counted_t : public Interface {
  public:
    // For the constructors of the implementing class. Nothing else is counted until make_counted() returns, so a
    // constructor must not hand out `this`.
    ref_counted_t() = default;
    ref_counted_t(const ref_counted_t&) = delete;
    ref_counted_t& operator=(const ref_counted_t&) = delete;

    // Any thread. The thread that releases the last reference runs the destructor and sees everything that
    // other threads did before they released theirs.
    void addReference() const noexcept override { m_references.fetch_add(1, std::memory_order_relaxed); }
    void releaseReference() const noexcept override {
        if (m_references.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    }

  protected:
    ~ref_counted_t() override = default;

  private:
    // Starts at the reference that make_counted() returns.
    mutable std::atomic<std::uint32_t> m_references{1};
};

// Makes a T from the arguments of one of its constructors; the returned pointer owns its first reference and
// is never empty.
template <class T, class... Args>
[[nodiscard]] sptr_t<T> make_counted(Args&&... args) {
    return sptr_t<T>::adopt(new T(std::forward<Args>(args)...));
}

}  // namespace basekit2
