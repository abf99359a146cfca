#include "fuzz/support.h"

#include <log4cplus/logger.h>
#include <sqlite3.h>
#include <sys/mman.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "host/engine/engine_registry.h"

namespace tessera_fuzz {

const char* const smallSchema =
    "CREATE TABLE t(a, b);"
    "INSERT INTO t VALUES (1, 'x'), (2.5, NULL), ('05', 'y');"
    "CREATE VIEW v AS SELECT a, count(*) AS n FROM t GROUP BY a;";

void require(bool condition, const char* what) {
    if (condition) return;
    (void)std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tessera-fuzz-XXXXXX").string();
    require(mkdtemp(pattern.data()) != nullptr, "there is a temporary folder");
    m_path = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

MemoryFile::MemoryFile() : m_descriptor(memfd_create("input", MFD_CLOEXEC)) {
    require(m_descriptor >= 0, "there is a file in memory");
}

MemoryFile::~MemoryFile() {
    close(m_descriptor);
}

void MemoryFile::set(std::string_view content) const {
    require(ftruncate(m_descriptor, 0) == 0, "the file in memory is emptied");
    require(pwrite(m_descriptor, content.data(), content.size(), 0) == static_cast<ssize_t>(content.size()),
            "the file in memory is written");
}

SmallResult::SmallResult() {
    log4cplus::Logger::getRoot().setLogLevel(log4cplus::OFF_LOG_LEVEL);
    sqlite3* database = nullptr;
    require(sqlite3_open(path().c_str(), &database) == SQLITE_OK, "the database is made");
    require(sqlite3_exec(database, smallSchema, nullptr, nullptr, nullptr) == SQLITE_OK,
            "the database is filled");
    sqlite3_close(database);
    auto opened = tessera_host::EngineRegistry::builtIn().open(path());
    require(opened.hasValue(), "the database opens");
    m_result = *std::move(opened);
}

tessera_host::PaneOptions smallLimits() {
    tessera_host::PaneOptions options;
    options.queryLimits.time = std::chrono::milliseconds(50);
    options.queryLimits.memory = std::uint64_t{32} << 20U;
    options.layout.limits.maxElements = 2'000;
    return options;
}

}  // namespace tessera_fuzz
