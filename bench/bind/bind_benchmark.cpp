// Measures reading a document, binding its values and writing the diagram, relative to parsing the same XML
// with the XML library alone; and the memory that the diagram needs in addition to the parsed document.
//
//     tessera_bench_bind [--nodes N] [--modes N] [--runs N]
//
// Times are the best of the runs. Each is a process of its own, so that none uses memory that another freed.
#include <fmt/format.h>
#include <log4cplus/logger.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>

#include "bench/support/generated_input.h"
#include "bench/support/measuring.h"
#include "bench/support/opened_pane.h"
#include "host/text/json_writer.h"
#include "host/text/xml_reader.h"

namespace tessera_bench {
namespace {

// The figures of one run, in seconds and bytes.
struct Figures {
    double alone, reading, opening, create, writing, refresh;
    double parsedBytes, keptBytes, peakBytes, jsonBytes;
};

Figures measure(const std::string& document, const std::string& database) {
    Figures figures{};
    const std::string text = contentOf(document);
    figures.alone = parseAlone(text);
    double before = allocated();
    {
        tessera_host::Expected<basekit2::variant_bag_t> bag{basekit2::variant_bag_t()};
        figures.reading = secondsOf([&] { bag = tessera_host::readXmlText(text); });
        figures.parsedBytes = allocated() - before;
    }
    Complaints complaints;
    std::unique_ptr<tessera_host::Pane> pane;
    before = allocated();
    figures.opening = secondsOf([&] { pane = openPane(document, database); });
    const double parsed = allocated() - before;
    const double residentBefore = peakResident();
    basekit2::variant_bag_t out;
    const auto request = [&](const char* name) {
        out = {};
        return secondsOf([&] {
            if (!pane->request(name, {}, out, {{}, &complaints}).is_success()) giveUp(name);
        });
    };
    figures.create = request("create");
    figures.keptBytes = allocated() - before - parsed;
    Counter sink;
    figures.writing = secondsOf([&] { tessera_host::writeJson(out, sink); });
    figures.jsonBytes = static_cast<double>(sink.bytes);
    figures.peakBytes = peakResident() - residentBefore;
    figures.refresh = request("refresh");
    return figures;
}

void print(const Figures& best, const InputCounts& counts) {
    const auto line = [&](const char* what, double seconds) {
        fmt::print("{:34} {:8.3f} s {:6.2f} times\n", what, seconds, seconds / best.alone);
    };
    line("XML library alone", best.alone);
    line("reading into a bag", best.reading);
    line("opening (reading, database)", best.opening);
    line("create (model, binding, output)", best.create);
    line("writing JSON", best.writing);
    line("document to JSON", best.opening + best.create + best.writing);
    line("refresh", best.refresh);
    const auto elements = static_cast<double>(counts.nodes + counts.links);
    fmt::print("parsed document: {:.0f} bytes a node or link; above it {:.0f} kept, {:.0f} at the peak\n",
               best.parsedBytes / elements, best.keptBytes / elements, best.peakBytes / elements);
    fmt::print("JSON: {:.1f} MB\n", best.jsonBytes / 1e6);
}

void run(const InputShape& shape, std::size_t runs, const std::filesystem::path& folder) {
    const std::string document = folder / "generated.xml";
    const std::string database = folder / "generated.db";
    const InputCounts counts = writeDocument(shape, document);
    writeDatabase(counts, database);
    fmt::print("{} nodes, {} links, {} references, {:.1f} MB of XML\n", counts.nodes, counts.links,
               counts.references, static_cast<double>(std::filesystem::file_size(document)) / 1e6);
    const std::function<Figures()> once = [&] { return measure(document, database); };
    Figures best = measureApart(once);
    for (std::size_t i = 1; i < runs; ++i) {
        const Figures figures = measureApart(once);
        for (double Figures::*each : {&Figures::alone, &Figures::reading, &Figures::opening, &Figures::create,
                                      &Figures::writing, &Figures::refresh})
            best.*each = std::min(best.*each, figures.*each);
    }
    print(best, counts);
}

}  // namespace
}  // namespace tessera_bench

int main(int argc, char** argv) {
    log4cplus::Logger::getRoot().setLogLevel(log4cplus::OFF_LOG_LEVEL);
    tessera_bench::InputShape shape;
    std::size_t runs = 1;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::size_t value = std::strtoul(argv[i + 1], nullptr, 10);
        if (std::strcmp(argv[i], "--nodes") == 0) shape.nodes = std::max<std::size_t>(value, 1);
        if (std::strcmp(argv[i], "--modes") == 0) shape.modes = std::min<std::size_t>(value, 3);
        if (std::strcmp(argv[i], "--runs") == 0) runs = std::max<std::size_t>(value, 1);
    }
    std::string folder = (std::filesystem::temp_directory_path() / "tessera-bench-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) return 1;
    tessera_bench::run(shape, runs, folder);
    std::filesystem::remove_all(folder);
}
