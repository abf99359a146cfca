#include "host/engine/sqlite/database_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "host/document/text.h"

namespace tessera_host {
namespace {

Error cannotOpen(std::string text) {
    return {ErrorKind::cannotOpen, std::move(text)};
}

std::string systemText(int error) {
    return oneLine(std::generic_category().message(error));
}

}  // namespace

std::optional<FileState> fileStateOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return std::nullopt;
    // In nanoseconds since 1970; enough for 64 bits until 2262.
    const std::int64_t modified =
        std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec;
    return FileState{status.st_dev, status.st_ino, status.st_size, modified};
}

bool hasSqliteHeader(const std::string& path) {
    using namespace std::string_view_literals;
    constexpr std::string_view header = "SQLite format 3\0"sv;
    // Read through SQLite's file system: closing a descriptor of one's own would end all locks that this
    // process holds on the file.
    sqlite3_vfs* files = sqlite3_vfs_find(nullptr);
    if (files == nullptr || !checkDatabaseFile(path)) return false;
    struct FreeName {
        void operator()(const char* name) const { sqlite3_free_filename(const_cast<char*>(name)); }
    };
    std::error_code ignored;
    const std::string whole = std::filesystem::absolute(path, ignored).string();
    const std::unique_ptr<const char, FreeName> name(
        sqlite3_create_filename(whole.c_str(), "", "", 0, nullptr));
    // SQLite's file systems make a file in storage of the caller's.
    std::vector<std::max_align_t> storage(
        static_cast<std::size_t>(files->szOsFile) / sizeof(std::max_align_t) + 1);
    auto* file = reinterpret_cast<sqlite3_file*>(storage.data());
    int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_MAIN_DB;
    const bool isOpen = name && files->xOpen(files, name.get(), file, flags, &flags) == SQLITE_OK;
    std::array<char, header.size()> begin{};
    const bool isRead =
        isOpen && file->pMethods->xRead(file, begin.data(), static_cast<int>(begin.size()), 0) == SQLITE_OK;
    if (file->pMethods != nullptr) file->pMethods->xClose(file);
    return isRead && std::string_view(begin.data(), begin.size()) == header;
}

bool isSettledInClosedFolder(const std::string& path) {
    const std::string folder = std::filesystem::path(path).parent_path().string();
    if (faccessat(AT_FDCWD, folder.empty() ? "." : folder.c_str(), W_OK, AT_EACCESS) == 0) return false;
    // Where one of these has contents, the main file alone may not be the last committed state.
    for (const char* ending : {"-wal", "-journal"}) {
        struct stat status {};
        if (stat((path + ending).c_str(), &status) == 0 && status.st_size > 0) return false;
    }
    return true;
}

// SQLite has one message for most of these, and would wait for the writer of a pipe for ever.
Expected<void> checkDatabaseFile(const std::string& path) {
    if (path.empty() || path.find('\0') != std::string::npos)
        return cannotOpen(tessera_host::quoted(path) + " is not the name of a file");
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) return cannotOpen("there is no such file");
        return cannotOpen("it cannot be opened (" + systemText(errno) + ")");
    }
    if (S_ISDIR(status.st_mode)) return cannotOpen("it is a directory");
    if (!S_ISREG(status.st_mode)) return cannotOpen("it is not a regular file");
    if (faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) != 0)
        return cannotOpen("it may not be read (" + systemText(errno) + ")");
    if (status.st_size == 0) return cannotOpen("it is empty");
    return {};
}

// Names such as "file:x?mode=rw" and ":memory:" mean something else to SQLite unless a folder is in front.
std::string literalPath(const std::string& path) {
    return path.front() == '/' ? path : "./" + path;
}

std::string immutableUri(const std::string& path) {
    std::string uri = "file:";
    for (const char c : literalPath(path)) {
        if (c == '%' || c == '?' || c == '#')
            uri += fmt::format("%{:02X}", static_cast<unsigned>(c));
        else
            uri += c;
    }
    return uri + "?immutable=1";
}

}  // namespace tessera_host
