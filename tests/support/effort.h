// How much is tried in tests that try a lot.
#pragma once

namespace tessera_test {

// All of it; a tenth where sanitizers make everything many times as slow.
template <class Count>
constexpr Count effort(Count all) {
#if defined(TESSERA_SANITIZED)
    return all / 10;
#else
    return all;
#endif
}

}  // namespace tessera_test
