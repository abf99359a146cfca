// Measures each stage of "create" on a generated diagram, and the memory; prints one JSON object.
//
//     tessera_bench_layout [--nodes N] [--flat] [--tangled] [--runs N] [--document FILE]
//
// Times are seconds, the best of the runs, each in a process of its own. "create" does not include the fetching
// of values. --document keeps the generated viewpoint in that file.
#include <fmt/format.h>
#include <log4cplus/logger.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>

#include "bench/support/generated_input.h"
#include "bench/support/measuring.h"
#include "bench/support/opened_pane.h"
#include "core/layout_watch.h"

namespace tessera_bench {
namespace {

constexpr std::size_t maxStages = 32;  // fixed, because a child process sends its figures as bytes
constexpr std::size_t dataStage = 1;

struct Figures {
    double alone;      // the XML library
    double reading;    // the document, into a bag
    double create;     // all of it
    double peakBytes;  // of the process, with the document's bag and the output's
    double nodesOut, linksOut;
    std::array<double, maxStages> stages;  // the first layoutStages().size() of them
};

class StageClock final : public tessera_1::ILayoutWatcher {
  public:
    explicit StageClock(Figures& figures) : m_figures(figures) {}

    bool stageEnded(const tessera_1::LayoutStage& stage) override {
        m_figures.stages.at(m_next++) = std::chrono::duration<double>(stage.took).count();
        return true;
    }

  private:
    Figures& m_figures;
    std::size_t m_next = 0;
};

double childrenOf(const basekit2::variant_bag_t& bag, const char* name) {
    double count = 0;
    if (const auto* child = bag.get_variant_bag(name))
        for (auto it = child->begin(); !it.at_end(); it.next())
            ++count;
    return count;
}

Figures measure(const std::string& document, const std::string& database, tessera_host::PaneOptions options) {
    Figures figures{};
    StageClock clock(figures);
    options.layout.watcher = &clock;
    figures.alone = parseAlone(contentOf(document));
    Complaints complaints;
    std::unique_ptr<tessera_host::Pane> pane;
    figures.reading = secondsOf([&] { pane = openPane(document, database, options); });
    basekit2::variant_bag_t out;
    figures.create = secondsOf([&] {
        if (!pane->request("create", {}, out, {{}, &complaints}).is_success()) giveUp("create");
    });
    figures.peakBytes = peakResident();
    figures.nodesOut = childrenOf(out, "nodes");
    figures.linksOut = childrenOf(out, "links");
    return figures;
}

void print(const Figures& best, const InputCounts& counts, double xmlBytes) {
    fmt::print(
        "{{\"nodes\": {}, \"links\": {}, \"xmlBytes\": {:.0f}, \"nodesOut\": {:.0f}, \"linksOut\": {:.0f},\n",
        counts.nodes, counts.links, xmlBytes, best.nodesOut, best.linksOut);
    double inside = 0;
    for (const double stage : best.stages)
        inside += stage;
    fmt::print(" \"xmlAlone\": {:.6f}, \"reading\": {:.6f}, \"create\": {:.6f}, \"peakBytes\": {:.0f},\n",
               best.alone, best.reading, best.create - best.stages.at(dataStage), best.peakBytes);
    fmt::print(" \"stages\": {{");
    for (std::size_t i = 0; i < tessera_1::layoutStages().size(); ++i)
        fmt::print("\"{}\": {:.6f}, ", tessera_1::layoutStages().at(i), best.stages.at(i));
    fmt::print("\"output\": {:.6f}}}}}\n", best.create - inside);
}

void run(const InputShape& shape, std::size_t runs, const std::string& given,
         const std::filesystem::path& folder) {
    const std::string document = given.empty() ? (folder / "generated.xml").string() : given;
    const std::string database = folder / "generated.db";
    tessera_host::PaneOptions options;
    options.layout.limits.maxElements = 50 * (shape.nodes + 1'000'000);
    const InputCounts counts = writeDocument(shape, document);
    writeDatabase(counts, database);
    const std::function<Figures()> once = [&] { return measure(document, database, options); };
    Figures best = measureApart(once);
    for (std::size_t i = 1; i < runs; ++i) {
        const Figures figures = measureApart(once);
        const double alone = std::min(best.alone, figures.alone);
        const double reading = std::min(best.reading, figures.reading);
        const auto ownTime = [](const Figures& each) { return each.create - each.stages.at(dataStage); };
        if (ownTime(figures) < ownTime(best)) best = figures;  // so that its stages belong together
        best.alone = alone;
        best.reading = reading;
    }
    print(best, counts, static_cast<double>(std::filesystem::file_size(document)));
}

}  // namespace
}  // namespace tessera_bench

int main(int argc, char** argv) {
    log4cplus::Logger::getRoot().setLogLevel(log4cplus::OFF_LOG_LEVEL);
    tessera_bench::InputShape shape;
    shape.allLocations = true;
    shape.nodesWithValues = 0;
    std::size_t runs = 1;
    std::string document;
    for (int i = 1; i < argc; ++i) {
        const bool hasValue = i + 1 < argc;
        const auto number = [&] { return std::max<std::size_t>(std::strtoul(argv[++i], nullptr, 10), 1); };
        if (std::strcmp(argv[i], "--flat") == 0)
            shape.isFlat = true;
        else if (std::strcmp(argv[i], "--tangled") == 0)
            shape.isTangled = true;
        else if (std::strcmp(argv[i], "--nodes") == 0 && hasValue)
            shape.nodes = number();
        else if (std::strcmp(argv[i], "--runs") == 0 && hasValue)
            runs = number();
        else if (std::strcmp(argv[i], "--document") == 0 && hasValue)
            document = argv[++i];
    }
    std::string folder = (std::filesystem::temp_directory_path() / "tessera-bench-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) return 1;
    tessera_bench::run(shape, runs, document, folder);
    std::filesystem::remove_all(folder);
}
