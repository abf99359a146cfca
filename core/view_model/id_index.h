// A hash table from texts to the positions where they stand.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <string_view>
#include <vector>

namespace tessera_1::view_model {

// Finds positions in a list by the text that stands there. Open addressing; it stores the hashes of the texts
// and not the texts, which its user supplies. Constant time on average.
class IdIndex {
  public:
    static constexpr std::uint32_t nowhere = std::numeric_limits<std::uint32_t>::max();

    static std::uint32_t hashOf(std::string_view id) noexcept {
        const std::size_t hash = std::hash<std::string_view>{}(id);
        return static_cast<std::uint32_t>(hash ^ (hash >> 32U));
    }

    // The position with that text, or `nowhere`. `textAt` returns the text at a position.
    template <class TextAt>
    [[nodiscard]] std::uint32_t find(std::string_view id, std::uint32_t hash, TextAt textAt) const {
        if (m_buckets.empty()) return nowhere;
        for (std::size_t at = hash & mask();; at = (at + 1) & mask()) {
            const Bucket& bucket = m_buckets[at];
            if (bucket.position == nowhere) return nowhere;
            if (bucket.hash == hash && textAt(bucket.position) == id) return bucket.position;
        }
    }

    // REQUIRES: the text is not in the table yet, and the position is not `nowhere`.
    void add(std::uint32_t hash, std::uint32_t position) {
        if (2 * (m_count + 1) > m_buckets.size()) grow(std::max<std::size_t>(16, 2 * m_buckets.size()));
        place({hash, position});
        ++m_count;
    }

    // REQUIRES: the position was added with that hash.
    void remove(std::uint32_t hash, std::uint32_t position) {
        std::size_t hole = hash & mask();
        while (m_buckets[hole].position != position)
            hole = next(hole);
        // Later entries of the same run move up, as far as their hashes allow.
        for (std::size_t at = next(hole); m_buckets[at].position != nowhere; at = next(at)) {
            const std::size_t home = m_buckets[at].hash & mask();
            if (((at - home) & mask()) < ((at - hole) & mask())) continue;
            m_buckets[hole] = m_buckets[at];
            hole = at;
        }
        m_buckets[hole] = Bucket();
        --m_count;
    }

    void reserve(std::size_t count) {
        std::size_t size = 16;
        while (size < 2 * count)
            size *= 2;
        if (size > m_buckets.size()) grow(size);
    }

    void clear() {
        m_buckets.clear();
        m_count = 0;
    }

  private:
    struct Bucket {
        std::uint32_t hash = 0;
        std::uint32_t position = nowhere;
    };

    [[nodiscard]] std::size_t mask() const noexcept { return m_buckets.size() - 1; }
    [[nodiscard]] std::size_t next(std::size_t at) const noexcept { return (at + 1) & mask(); }

    void place(Bucket bucket) {
        std::size_t at = bucket.hash & mask();
        while (m_buckets[at].position != nowhere)
            at = next(at);
        m_buckets[at] = bucket;
    }

    void grow(std::size_t size) {
        std::vector<Bucket> old(size);
        old.swap(m_buckets);
        for (const Bucket& bucket : old)
            if (bucket.position != nowhere) place(bucket);
    }

    std::vector<Bucket> m_buckets;  // a power of two
    std::size_t m_count = 0;
};

}  // namespace tessera_1::view_model
