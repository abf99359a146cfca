// Times reading a document, binding its values and writing the diagram, against parsing the same XML with the
// XML library alone; and measures the memory that the diagram takes beside the parsed document.
//
//     tessera_bench_bind [--nodes N] [--modes N] [--runs N]
//
// Times are the best of the runs, each in a process of its own, so that none profits from memory of another.
#include <expat.h>
#include <fmt/format.h>
#include <log4cplus/logger.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
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

// What one run took, in seconds and bytes.
struct Figures {
    double alone, reading, opening, create, writing, refresh;
    double parsedBytes, keptBytes, peakBytes, jsonBytes;
};

[[noreturn]] void giveUp(const std::string& text) {
    fmt::print(stderr, "{}\n", text);
    std::exit(1);
}

Figures measure(const tessera_host::PaneSettings& settings) {
    Figures figures{};
    std::ifstream file(settings.document, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(file)), {});
    figures.alone = parseAlone(text);
    double before = allocated();
    {
        basekit2::variant_bag_t bag;
        figures.reading = secondsOf([&] { (void)tessera_host::readXmlText(text, bag); });
        figures.parsedBytes = allocated() - before;
    }
    Complaints complaints;
    tessera_host::OpenError error;
    std::unique_ptr<tessera_host::Pane> pane;
    before = allocated();
    figures.opening =
        secondsOf([&] { pane = tessera_host::Pane::open(settings, complaints, nullptr, error); });
    if (!pane) giveUp(error.text);
    const double parsed = allocated() - before;
    const double residentBefore = peakResident();
    basekit2::variant_bag_t out;
    const auto request = [&](const char* name) {
        out = {};
        return secondsOf([&] {
            if (!pane->request(name, {}, out, nullptr).is_success()) giveUp(name);
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

// Measures in a child process, which starts with fresh memory.
Figures measureApart(const tessera_host::PaneSettings& settings) {
    int ends[2];
    if (pipe(ends) != 0) giveUp("pipe");
    std::fflush(stdout);  // or the child prints it again
    const pid_t child = fork();
    if (child == 0) {
        const Figures figures = measure(settings);
        _exit(write(ends[1], &figures, sizeof figures) == sizeof figures ? 0 : 1);
    }
    Figures figures{};
    int status = 0;
    const bool read = ::read(ends[0], &figures, sizeof figures) == sizeof figures;
    waitpid(child, &status, 0);
    if (!read || status != 0) giveUp("the measuring process failed");
    close(ends[0]);
    close(ends[1]);
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
    tessera_host::PaneSettings settings;
    settings.document = folder / "generated.xml";
    settings.database = folder / "generated.db";
    const InputCounts counts = writeDocument(shape, settings.document);
    writeDatabase(counts, settings.database);
    fmt::print("{} nodes, {} links, {} references, {:.1f} MB of XML\n", counts.nodes, counts.links,
               counts.references, static_cast<double>(std::filesystem::file_size(settings.document)) / 1e6);
    Figures best = measureApart(settings);
    for (std::size_t i = 1; i < runs; ++i) {
        const Figures figures = measureApart(settings);
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
