// Counts crossings between two neighbouring layers.
#pragma once

#include "draw/placement/keys.h"

namespace tessera_draw::placing {

class CrossingCounter {
  public:
    CrossingCounter(const Net& net, const Keys& keys) : m_net(net), m_keys(keys) {}

    [[nodiscard]] std::uint64_t behind(Index layer);
    [[nodiscard]] std::uint64_t inContainer(Index container);

  private:
    void collectHeads(Index layer);

    const Net& m_net;
    const Keys& m_keys;
    std::vector<Index> m_heads;  // of the edges, ordered by their tails
    std::vector<std::uint64_t> m_ends;
    std::vector<Index> m_tree;
};

}  // namespace tessera_draw::placing
