#include "bench/draw/picture_figures.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <numbers>
#include <unordered_map>

namespace tessera_bench {
namespace {

using tessera_draw::Placement;
using tessera_draw::Point;

using Chain = std::vector<Point>;

constexpr int piecesPerCurve = 12;

void addCurve(Chain& chain, const Point& c1, const Point& c2, const Point& end) {
    const Point start = chain.back();
    for (int i = 1; i <= piecesPerCurve; ++i) {
        const double t = static_cast<double>(i) / piecesPerCurve;
        const double s = 1 - t;
        const auto at = [&](double a, double b, double c, double d) {
            return s * s * s * a + 3 * s * s * t * b + 3 * s * t * t * c + t * t * t * d;
        };
        chain.push_back({at(start.x, c1.x, c2.x, end.x), at(start.y, c1.y, c2.y, end.y)});
    }
}

struct Piece {
    Point a;
    Point b;
    std::size_t line;
};

double side(const Point& a, const Point& b, const Point& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// Where the pieces cross, if they do. Pieces are half open, so that a crossing at a joint counts once.
bool doCross(const Piece& p, const Piece& q, Point& at) {
    const double pa = side(q.a, q.b, p.a);
    const double pb = side(q.a, q.b, p.b);
    const double qa = side(p.a, p.b, q.a);
    const double qb = side(p.a, p.b, q.b);
    if ((pa >= 0) == (pb >= 0) || (qa >= 0) == (qb >= 0)) return false;
    const double t = pa / (pa - pb);
    at = {p.a.x + t * (p.b.x - p.a.x), p.a.y + t * (p.b.y - p.a.y)};
    return true;
}

// Finds pieces by the squares of a grid that they may touch.
class Grid {
  public:
    explicit Grid(const std::vector<Piece>& pieces) : m_pieces(pieces) {
        for (std::size_t i = 0; i < pieces.size(); ++i)
            forSquares(pieces[i],
                       [&](std::int64_t x, std::int64_t y) { m_squares[keyOf(x, y)].push_back(i); });
    }

    [[nodiscard]] std::uint64_t crossings() const {
        std::uint64_t count = 0;
        for (const auto& [key, inside] : m_squares)
            for (std::size_t i = 0; i < inside.size(); ++i)
                for (std::size_t k = i + 1; k < inside.size(); ++k) {
                    const Piece& p = m_pieces[inside[i]];
                    const Piece& q = m_pieces[inside[k]];
                    Point at;
                    if (p.line != q.line && doCross(p, q, at) && keyOf(squareOf(at.x), squareOf(at.y)) == key)
                        ++count;
                }
        return count;
    }

  private:
    static std::int64_t squareOf(double value) { return static_cast<std::int64_t>(std::floor(value / 64)); }
    static std::uint64_t keyOf(std::int64_t x, std::int64_t y) {
        return static_cast<std::uint64_t>(x) << 32 | static_cast<std::uint32_t>(y);
    }

    template <typename Visit>
    static void forSquares(const Piece& piece, Visit visit) {
        const auto [left, right] = std::minmax(piece.a.x, piece.b.x);
        const auto [top, bottom] = std::minmax(piece.a.y, piece.b.y);
        for (std::int64_t x = squareOf(left); x <= squareOf(right); ++x)
            for (std::int64_t y = squareOf(top); y <= squareOf(bottom); ++y)
                visit(x, y);
    }

    const std::vector<Piece>& m_pieces;
    std::unordered_map<std::uint64_t, std::vector<std::size_t>> m_squares;
};

double turnAt(const Point& a, const Point& b, const Point& c) {
    const double before = std::atan2(b.y - a.y, b.x - a.x);
    const double after = std::atan2(c.y - b.y, c.x - b.x);
    return std::abs(std::remainder(after - before, 2 * std::numbers::pi));
}

}  // namespace

Picture pictureOf(const Placement& placement) {
    Picture picture;
    picture.size = placement.size;
    for (const auto& line : placement.lines) {
        Chain chain;
        for (const auto& stretch : line.stretches) {
            chain.push_back(stretch.start);
            for (const auto& segment : stretch.segments)
                if (segment.isCurve)
                    addCurve(chain, segment.control1, segment.control2, segment.end);
                else
                    chain.push_back(segment.end);
        }
        picture.lines.push_back(chain);
    }
    return picture;
}

Picture readPlain(const std::string& path) {
    constexpr double pixelsPerInch = 72;
    Picture picture;
    std::ifstream in(path);
    std::string word;
    while (in >> word) {
        double skip = 0;
        if (word == "graph") {
            in >> skip >> picture.size.width >> picture.size.height;
            picture.size = {picture.size.width * pixelsPerInch, picture.size.height * pixelsPerInch};
        } else if (word == "edge") {
            std::string end;
            std::size_t count = 0;
            in >> end >> end >> count;
            Chain points(count);
            for (Point& point : points) {
                in >> point.x >> point.y;
                point = {point.x * pixelsPerInch, point.y * pixelsPerInch};
            }
            Chain chain;
            if (count > 0) chain.push_back(points[0]);
            for (std::size_t i = 1; i + 2 < count; i += 3)
                addCurve(chain, points[i], points[i + 1], points[i + 2]);
            picture.lines.push_back(chain);
        }
        std::getline(in, word);
    }
    return picture;
}

PictureFigures figuresOf(const Picture& picture) {
    PictureFigures figures;
    std::vector<Piece> pieces;
    for (std::size_t line = 0; line < picture.lines.size(); ++line) {
        Chain chain = picture.lines[line];
        const auto isSame = [](const Point& a, const Point& b) {
            return std::hypot(a.x - b.x, a.y - b.y) < 1e-6;
        };
        chain.erase(std::unique(chain.begin(), chain.end(), isSame), chain.end());
        for (std::size_t i = 1; i < chain.size(); ++i) {
            pieces.push_back({chain[i - 1], chain[i], line});
            figures.length += std::hypot(chain[i].x - chain[i - 1].x, chain[i].y - chain[i - 1].y);
            if (i > 1) figures.bends += turnAt(chain[i - 2], chain[i - 1], chain[i]) / (std::numbers::pi / 2);
        }
    }
    figures.crossings = Grid(pieces).crossings();
    figures.area = picture.size.width * picture.size.height;
    figures.aspect = picture.size.height > 0 ? picture.size.width / picture.size.height : 0;
    return figures;
}

}  // namespace tessera_bench
