// Feeds documents to all code that handles them: the XML reader, the queries, the library with all passes, and
// the writer. Built with assertions, so that the graph is verified after each pass.
//
//     tessera_fuzz_document [-max_total_time=SECONDS] [-dict=fuzz/document.dict] FOLDER [FOLDER...]
#include <log4cplus/logger.h>
#include <sqlite3.h>
#include <sys/mman.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "core/layout_options.h"
#include "host/engine/engine_registry.h"
#include "host/lint/reversal/acyclic_viewpoint.h"
#include "host/pane/pane.h"
#include "host/text/json_writer.h"

namespace {

class Nowhere final : public tessera_host::TextSink {
  protected:
    bool deliver(std::string_view) override { return true; }
};

void require(bool condition) {
    if (!condition) std::abort();
}

// A small result database, and a file in memory that holds the current document.
class Place {
  public:
    Place() : m_document(memfd_create("document", 0)) {
        require(m_document >= 0);
        log4cplus::Logger::getRoot().setLogLevel(log4cplus::OFF_LOG_LEVEL);
        std::string folder = (std::filesystem::temp_directory_path() / "tessera-fuzz-XXXXXX").string();
        require(mkdtemp(folder.data()) != nullptr);
        m_folder = folder;
        document = "/proc/self/fd/" + std::to_string(m_document);
        options.queryLimits.time = std::chrono::milliseconds(50);
        options.layout.limits.maxElements = 2'000;
        const std::string path = m_folder / "result.db";
        sqlite3* database = nullptr;
        require(sqlite3_open(path.c_str(), &database) == SQLITE_OK);
        require(sqlite3_exec(database, "CREATE TABLE t(a, b); INSERT INTO t VALUES (1, 'x'), (2.5, NULL);",
                             nullptr, nullptr, nullptr) == SQLITE_OK);
        sqlite3_close(database);
        auto opened = tessera_host::EngineRegistry::builtIn().open(path);
        require(opened.hasValue());
        result = *std::move(opened);
    }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;
    ~Place() {
        close(m_document);
        std::filesystem::remove_all(m_folder);
    }

    void setDocument(const std::uint8_t* data, std::size_t size) const {
        require(ftruncate(m_document, 0) == 0);
        require(pwrite(m_document, data, size, 0) == static_cast<ssize_t>(size));
    }

    std::string document;
    std::shared_ptr<tessera_host::IResult> result;
    tessera_host::PaneOptions options;

  private:
    std::filesystem::path m_folder;
    int m_document;
};

void request(tessera_host::Pane& pane, const char* name, const basekit2::variant_bag_t& in) {
    basekit2::variant_bag_t out;
    (void)pane.request(name, in, out, {});
    Nowhere sink;
    (void)tessera_host::writeJson(out, sink);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Place place;
    place.setDocument(data, size);
    const auto viewpoint = tessera_host::Viewpoint::readFile(place.document, {});
    if (!viewpoint) return 0;
    (void)describeCycles(**viewpoint, {});
    tessera_host::Pane pane(*viewpoint, place.result, (*viewpoint)->filters(), place.options);
    request(pane, "create", {});
    basekit2::variant_bag_t mode;
    mode.add_variant_bag("mode").put("", "size");
    request(pane, "changeDisplayMode", mode);
    request(pane, "refresh", {});
    return 0;
}
