// Times reading a document, binding its values and writing the diagram, against parsing the same XML with the
// XML library alone; and measures the memory that the diagram takes beside the parsed document.
//
//     tessera_bench_bind [--nodes N]
#include <expat.h>
#include <fmt/format.h>
#include <malloc.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

#include "bench/bind/generated_input.h"
#include "host/pane/pane.h"
#include "host/text/json_writer.h"
#include "host/text/xml_reader.h"

namespace tessera_bench {
namespace {

using Clock = std::chrono::steady_clock;

double secondsOf(const std::function<void()>& work) {
    const auto begin = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

// Bytes that the program has allocated and not given back.
double allocated() {
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

double peakResident() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:")) return std::atof(line.c_str() + 6) * 1024;
    return 0;
}

class Counter final : public tessera_host::TextSink {
  public:
    std::size_t bytes = 0;

  protected:
    bool deliver(std::string_view block) override {
        bytes += block.size();
        return true;
    }
};

class Complaints final : public relay2::IMessenger {
  public:
    void post(relay2::severity_t, const std::string& text, basekit2::source_position_t) override {
        fmt::print(stderr, "{}\n", text);
        std::exit(1);
    }
};

double parseAlone(const std::string& text) {
    const XML_Parser parser = XML_ParserCreate(nullptr);
    std::size_t events = 0;
    XML_SetUserData(parser, &events);
    XML_SetElementHandler(
        parser, [](void* count, const char*, const char**) { ++*static_cast<std::size_t*>(count); },
        [](void* count, const char*) { ++*static_cast<std::size_t*>(count); });
    XML_SetCharacterDataHandler(parser,
                                [](void* count, const char*, int) { ++*static_cast<std::size_t*>(count); });
    const double seconds = secondsOf([&] {
        if (XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1) != XML_STATUS_OK) std::exit(1);
    });
    XML_ParserFree(parser);
    return seconds;
}

void run(std::size_t nodes, const std::filesystem::path& folder) {
    InputShape shape;
    shape.nodes = nodes;
    tessera_host::PaneSettings settings;
    settings.document = folder / "generated.xml";
    settings.database = folder / "generated.db";
    const InputCounts counts = writeDocument(shape, settings.document);
    writeDatabase(counts, settings.database);
    std::ifstream file(settings.document, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(file)), {});
    fmt::print("{} nodes, {} links, {} references, {:.1f} MB of XML\n", counts.nodes, counts.links,
               counts.references, static_cast<double>(text.size()) / 1e6);

    const double alone = std::min(parseAlone(text), parseAlone(text));
    double before = allocated();
    double reading = 0;
    {
        basekit2::variant_bag_t bag;
        reading = secondsOf([&] { (void)tessera_host::readXmlText(text, bag); });
        fmt::print("parsed document: {:.0f} bytes a node or link\n",
                   (allocated() - before) / static_cast<double>(counts.nodes + counts.links));
    }

    Complaints complaints;
    tessera_host::OpenError error;
    std::unique_ptr<tessera_host::Pane> pane;
    before = allocated();
    const double opening =
        secondsOf([&] { pane = tessera_host::Pane::open(settings, complaints, nullptr, error); });
    if (!pane) {
        fmt::print(stderr, "{}\n", error.text);
        std::exit(1);
    }
    const double parsed = allocated() - before;
    const double residentBefore = peakResident();
    basekit2::variant_bag_t out;
    const auto request = [&](const char* name) {
        out = {};
        return secondsOf([&] {
            if (!pane->request(name, {}, out, nullptr).is_success()) std::exit(1);
        });
    };
    const double create = request("create");
    const double kept = allocated() - before - parsed;
    Counter sink;
    const double writing = secondsOf([&] { tessera_host::writeJson(out, sink); });
    const double refresh = request("refresh");
    const double peak = peakResident() - residentBefore;

    const auto line = [&](const char* what, double seconds) {
        fmt::print("{:34} {:8.3f} s {:6.2f} times\n", what, seconds, seconds / alone);
    };
    line("XML library alone", alone);
    line("reading into a bag", reading);
    line("opening (reading, database)", opening);
    line("create (model, binding, output)", create);
    line("writing JSON", writing);
    line("document to JSON", opening + create + writing);
    line("refresh", refresh);
    const auto elements = static_cast<double>(counts.nodes + counts.links);
    fmt::print("memory above the parsed document: {:.0f} bytes a node or link kept, {:.0f} at the peak\n",
               kept / elements, peak / elements);
    fmt::print("JSON: {:.1f} MB\n", static_cast<double>(sink.bytes) / 1e6);
}

}  // namespace
}  // namespace tessera_bench

int main(int argc, char** argv) {
    std::size_t nodes = 100'000;
    if (argc == 3 && std::strcmp(argv[1], "--nodes") == 0) nodes = std::strtoul(argv[2], nullptr, 10);
    std::string folder = (std::filesystem::temp_directory_path() / "tessera-bench-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr || nodes == 0) return 1;
    tessera_bench::run(nodes, folder);
    std::filesystem::remove_all(folder);
}
