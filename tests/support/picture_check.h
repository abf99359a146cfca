// Counts what no drawing may show.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "draw/placement/placement.h"

namespace tessera_test {

using tessera_draw::Index;
using tessera_draw::nothing;

// A drawing as the checker sees it, made from a placement or from a scene.
struct Picture {
    struct Box {
        tessera_draw::Rect rect;
        Index container = nothing;  // another of the boxes
        bool isContainer = false;
        bool isLabel = false;
        tessera_draw::Insets padding;  // of a container: where no member may be
        std::string name;
    };
    struct Head {
        tessera_draw::Point tip;
        tessera_draw::Point direction;
    };
    struct Line {
        Index from = nothing;
        Index to = nothing;
        std::vector<Index> through;
        std::vector<tessera_draw::PlacedLine::Stretch> stretches;
        bool wantsFromHead = false;
        bool wantsToHead = false;
        std::optional<Head> fromHead;  // where a line has one, it may end up to its length before the tip
        std::optional<Head> toHead;
        std::string name;
    };
    struct Text {
        tessera_draw::Rect area;
        Index box = nothing;  // `nothing`: only the picture's border counts
        std::string text;
        bool isHeader = false;  // stands free in a container
        double whole = 0;       // of a text that is cut: the width of all of it
        double room = 0;        // what its line has for it
    };

    tessera_draw::Size size;
    double headLength = 0;
    std::vector<Box> boxes;
    std::vector<Line> lines;
    std::vector<Text> texts;
    std::size_t missing = 0;  // what should have been drawn and was not
};

struct Faults {
    std::size_t boxes = 0;   // two of one container overlap, or one leaves its container or the picture
    std::size_t labels = 0;  // two overlap, wherever they are
    std::size_t lines = 0;   // a line and a box that it has nothing to do with
    std::size_t torn = 0;    // lines with a gap, or an end that is not at its box
    std::size_t heads = 0;   // too many, too few, or not at their end
    std::size_t texts = 0;   // leave their box, or lie under another
    std::size_t cut = 0;     // texts that are cut although all of them would fit
    std::size_t behind = 0;  // lines behind a container's texts
    std::size_t missing = 0;
    std::size_t together = 0;           // pairs of lines that look like one for a while; no fault, but few
    std::vector<std::string> examples;  // the first of each

    void add(const Faults& other);
    [[nodiscard]] std::size_t total() const {
        return boxes + labels + lines + torn + heads + texts + cut + behind + missing;
    }
};

std::ostream& operator<<(std::ostream& out, const Faults& faults);

[[nodiscard]] Faults checkPicture(const Picture& picture);

}  // namespace tessera_test
