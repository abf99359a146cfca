// Counts crossings, lengths and area in a picture of a graph.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "draw/placement/placement.h"

namespace tessera_bench {

// Each line as a chain of short straight pieces.
struct Picture {
    tessera_draw::Size size;
    std::vector<std::vector<tessera_draw::Point>> lines;
};

struct PictureFigures {
    std::uint64_t crossings = 0;
    double length = 0;
    double bends = 0;  // all that lines turn, in right angles
    double area = 0;
    double aspect = 0;
};

[[nodiscard]] Picture pictureOf(const tessera_draw::Placement& placement);

// Reads the output of `dot -Tplain`.
[[nodiscard]] Picture readPlain(const std::string& path);

[[nodiscard]] PictureFigures figuresOf(const Picture& picture);

}  // namespace tessera_bench
