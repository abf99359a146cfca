// Points, sizes and rectangles. All lengths are CSS pixels (1/96 inch); x grows to the right, y downwards.
//
// Plain values: nothing is checked, so a caller may hold a negative or infinite length while it computes.
#pragma once

namespace tessera_draw {

// A position. Its origin is that of the coordinates that the owner names: a container's or the drawing's.
struct Point {
    double x = 0;
    double y = 0;

    friend bool operator==(const Point&, const Point&) = default;
};

// The extent of something, without a position. Neither length is negative in a finished drawing.
struct Size {
    double width = 0;
    double height = 0;

    friend bool operator==(const Size&, const Size&) = default;
};

// A rectangle by its upper left corner and its extent. Two that share a side do not overlap.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    // The x of the right side and the y of the lower one.
    [[nodiscard]] double right() const noexcept { return x + width; }
    [[nodiscard]] double bottom() const noexcept { return y + height; }

    friend bool operator==(const Rect&, const Rect&) = default;
};

// Distances from the four sides of a rectangle inwards.
struct Insets {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    friend bool operator==(const Insets&, const Insets&) = default;
};

}  // namespace tessera_draw
