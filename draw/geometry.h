// Points, sizes and rectangles, in CSS pixels; y grows downwards.
#pragma once

namespace tessera_draw {

struct Point {
    double x = 0;
    double y = 0;

    friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
    double width = 0;
    double height = 0;

    friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    [[nodiscard]] double right() const noexcept { return x + width; }
    [[nodiscard]] double bottom() const noexcept { return y + height; }

    friend bool operator==(const Rect&, const Rect&) = default;
};

struct Insets {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    friend bool operator==(const Insets&, const Insets&) = default;
};

}  // namespace tessera_draw
