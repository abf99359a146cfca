// Bags to be drawn: finished random diagrams, and small ones put together by hand.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "draw/output.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_test {

// What the library returns for a diagram of fillRandomDiagram(), all passes run.
[[nodiscard]] basekit2::variant_bag_t randomDrawing(std::uint64_t seed);

// The same diagram with every value replaced.
[[nodiscard]] basekit2::variant_bag_t withValues(const basekit2::variant_bag_t& bag, std::string_view value);

// The same diagram with every display name and every name of a row replaced.
[[nodiscard]] basekit2::variant_bag_t withNames(const basekit2::variant_bag_t& bag, std::string_view name);

// Puts a bag together as the library writes it.
class DrawnBag {
  public:
    DrawnBag();

    basekit2::variant_bag_t& node(std::string_view id, std::string_view name, std::int64_t level = 0,
                                  std::string_view type = "node", std::string_view group = "");
    // Returns the row, which further values may be put into.
    basekit2::variant_bag_t& row(basekit2::variant_bag_t& node, std::string_view name,
                                 std::string_view value);
    void link(std::string_view id, std::string_view from, std::string_view to, std::string_view direction);

    basekit2::variant_bag_t bag;

  private:
    basekit2::variant_bag_t* m_nodes;
    basekit2::variant_bag_t* m_links;
};

// Keeps what is written.
class StringOutput final : public tessera_draw::Output {
  public:
    bool write(std::string_view piece) override {
        text += piece;
        return true;
    }

    std::string text;
};

}  // namespace tessera_test
