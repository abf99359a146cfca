// The number of attempts in random tests.
#pragma once

namespace tessera_test {

// The full number; a tenth of it under sanitizers, which are many times slower.
template <class Count>
constexpr Count effort(Count all) {
#if defined(TESSERA_SANITIZED)
    return all / 10;
#else
    return all;
#endif
}

}  // namespace tessera_test
