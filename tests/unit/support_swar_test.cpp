#include "support/swar.h"

#include <gtest/gtest.h>

#include <string>

namespace tessera_support {
namespace {

// The functions on words, compared with a look at each byte.
TEST(Swar, IsRightForEveryByteAtEveryPlace) {
    for (unsigned value = 0; value < 256; ++value) {
        for (std::size_t place = 0; place < 8; ++place) {
            std::string bytes(8, 'x');
            bytes[place] = static_cast<char>(value);
            const word_t word = loadWord(bytes.data());
            const word_t bit = word_t{0x80} << (8 * place);
            ASSERT_EQ(highBytes(word), value >= 0x80 ? bit : 0);
            ASSERT_EQ(bytesBelow(word, 0x20), value < 0x20 ? bit : 0);
            ASSERT_EQ(bytesEqual(word, '\n'), value == '\n' ? bit : 0);
        }
    }
}

}  // namespace
}  // namespace tessera_support
