// Eight bytes at once ("SIMD within a register"): questions about all bytes of a machine word.
//
// Each question returns a word in which the highest bit of a byte is set where the byte has the property, and
// no other bit. A scan over a text loads word after word while the result is 0; then it looks at the bytes
// one by one, or finds the first with std::countr_zero(result) / 8. The questions can be combined with "|".
// Any thread; nothing here throws.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace tessera_support {

// A machine word as eight bytes, the lowest the first of the text.
using word_t = std::uint64_t;

// The word of the eight bytes from `bytes` on, whatever their alignment and the machine's byte order.
// REQUIRES: eight readable bytes; a text's last seven are read one by one.
[[nodiscard]] inline word_t loadWord(const char* bytes) noexcept {
    word_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return std::endian::native == std::endian::little ? word : __builtin_bswap64(word);
}

// The word of eight such bytes.
[[nodiscard]] constexpr word_t everyByte(unsigned char byte) noexcept {
    return 0x0101010101010101U * byte;
}

// The bytes of 0x80 and above: those that are not ASCII.
[[nodiscard]] constexpr word_t highBytes(word_t word) noexcept {
    return word & everyByte(0x80);
}

// The bytes below `bound`, compared as unsigned numbers. Exact: no byte is reported because of its neighbour.
// REQUIRES: bound <= 0x80.
[[nodiscard]] constexpr word_t bytesBelow(word_t word, unsigned char bound) noexcept {
    // Adding carries into the highest bit unless the lower seven are below the bound, and never further.
    const word_t notBelow = (word & everyByte(0x7F)) + everyByte(static_cast<unsigned char>(0x80 - bound));
    return ~(notBelow | word) & everyByte(0x80);
}

// The bytes that are `byte`, which may be any.
[[nodiscard]] constexpr word_t bytesEqual(word_t word, char byte) noexcept {
    return bytesBelow(word ^ everyByte(static_cast<unsigned char>(byte)), 1);
}

}  // namespace tessera_support
