// Places a generated diagram and prints the figures of the picture as one JSON object.
//
//     tessera_bench_draw [--nodes N] [--flat] [--tangled] [--seed N] [--runs N] [--svg FILE] [--dot FILE]
//     tessera_bench_draw --plain FILE
//
// The time is the best of the runs, in seconds. --svg writes a simple picture, --dot the same graph for `dot`.
// --plain reads a drawing of `dot -Tplain` and prints its figures.
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>

#include "bench/draw/generated_drawing.h"
#include "bench/draw/picture_figures.h"

namespace tessera_bench {
namespace {

using tessera_draw::Placement;
using tessera_draw::PlacementInput;

void print(const PictureFigures& figures, double seconds) {
    fmt::print(
        "{{\"crossings\": {}, \"length\": {:.0f}, \"bends\": {:.0f}, \"area\": {:.0f}, \"aspect\": {:.2f}",
        figures.crossings, figures.length, figures.bends, figures.area, figures.aspect);
    if (seconds > 0) fmt::print(", \"seconds\": {:.6f}", seconds);
    fmt::print("}}\n");
}

void writeSvg(const PlacementInput& input, const Placement& placement, const std::string& path) {
    std::ofstream out(path);
    out << fmt::format(
        "<svg xmlns='http://www.w3.org/2000/svg' width='{0:.0f}' height='{1:.0f}' "
        "viewBox='-10 -10 {0:.0f} {1:.0f}'><rect x='-10' y='-10' width='100%' height='100%' "
        "fill='#FBFCFE'/><g fill='none' stroke='#B9C5D8'>\n",
        placement.size.width + 20, placement.size.height + 20);
    const auto writeBox = [&](std::size_t i) {
        const auto& box = placement.boxes[i];
        out << fmt::format("<rect x='{:.1f}' y='{:.1f}' width='{:.1f}' height='{:.1f}' rx='5' fill='{}'/>\n",
                           box.x, box.y, box.width, box.height,
                           input.boxes[i].isContainer ? "#F1F4F9" : "#fff");
    };
    std::vector<std::size_t> byArea;
    for (std::size_t i = 0; i < input.boxes.size(); ++i)
        byArea.push_back(i);
    std::stable_sort(byArea.begin(), byArea.end(), [&](std::size_t a, std::size_t b) {
        const auto area = [&](std::size_t k) { return placement.boxes[k].width * placement.boxes[k].height; };
        return area(a) > area(b);
    });
    for (const std::size_t i : byArea)
        writeBox(i);
    out << "</g><g fill='none' stroke='#56657f' stroke-width='1.4'>\n";
    for (const auto& line : placement.lines)
        for (const auto& stretch : line.stretches) {
            out << fmt::format("<path d='M{:.2f} {:.2f}", stretch.start.x, stretch.start.y);
            for (const auto& segment : stretch.segments)
                if (segment.isCurve)
                    out << fmt::format("C{:.2f} {:.2f} {:.2f} {:.2f} {:.2f} {:.2f}", segment.control1.x,
                                       segment.control1.y, segment.control2.x, segment.control2.y,
                                       segment.end.x, segment.end.y);
                else
                    out << fmt::format("L{:.2f} {:.2f}", segment.end.x, segment.end.y);
            out << "'/>\n";
        }
    out << "</g></svg>\n";
}

struct Files {
    std::string svg;
    std::string dot;
    std::string plain;
};

void run(const InputShape& shape, std::size_t runs, const Files& files) {
    const PlacementInput input = generatedDrawing(shape);
    if (!files.dot.empty()) writeDot(input, files.dot);
    double best = std::numeric_limits<double>::max();
    Placement placement;
    for (std::size_t i = 0; i < runs; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        placement = place(input, {});
        best =
            std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    }
    if (!files.svg.empty()) writeSvg(input, placement, files.svg);
    print(figuresOf(pictureOf(placement)), best);
}

}  // namespace
}  // namespace tessera_bench

int main(int argc, char** argv) {
    tessera_bench::InputShape shape;
    shape.nodes = 1000;
    std::size_t runs = 1;
    tessera_bench::Files files;
    for (int i = 1; i < argc; ++i) {
        const auto is = [&](const char* name) { return std::strcmp(argv[i], name) == 0; };
        const auto isWithValue = [&](const char* name) { return is(name) && i + 1 < argc; };
        const auto number = [&] { return std::max<std::size_t>(std::strtoul(argv[++i], nullptr, 10), 1); };
        if (is("--flat"))
            shape.isFlat = true;
        else if (is("--tangled"))
            shape.isTangled = true;
        else if (isWithValue("--nodes"))
            shape.nodes = number();
        else if (isWithValue("--runs"))
            runs = number();
        else if (isWithValue("--seed"))
            shape.seed = static_cast<unsigned>(number());
        else if (isWithValue("--svg"))
            files.svg = argv[++i];
        else if (isWithValue("--dot"))
            files.dot = argv[++i];
        else if (isWithValue("--plain"))
            files.plain = argv[++i];
    }
    if (files.plain.empty())
        tessera_bench::run(shape, runs, files);
    else
        tessera_bench::print(tessera_bench::figuresOf(tessera_bench::readPlain(files.plain)), 0);
}
