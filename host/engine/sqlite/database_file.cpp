#include "host/engine/sqlite/database_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "host/document/text.h"

namespace tessera_host {
namespace {

std::string systemText(int error) {
    return oneLine(std::generic_category().message(error));
}

}  // namespace

std::optional<FileState> fileStateOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return std::nullopt;
    const std::int64_t modified =
        std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec;
    return FileState{status.st_dev, status.st_ino, status.st_size, modified};
}

bool isSettledInClosedFolder(const std::string& path) {
    const std::string folder = std::filesystem::path(path).parent_path().string();
    if (faccessat(AT_FDCWD, folder.empty() ? "." : folder.c_str(), W_OK, AT_EACCESS) == 0) return false;
    for (const char* ending : {"-wal", "-journal"}) {
        struct stat status {};
        if (stat((path + ending).c_str(), &status) == 0 && status.st_size > 0) return false;
    }
    return true;
}

// SQLite would answer one and the same for most of these, and would wait for a pipe's writer for ever.
std::string databaseFileProblem(const std::string& path) {
    if (path.empty() || path.find('\0') != std::string::npos)
        return tessera_host::quoted(path) + " is no name of a file";
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) return "there is no such file";
        return "it cannot be opened (" + systemText(errno) + ")";
    }
    if (S_ISDIR(status.st_mode)) return "it is a directory";
    if (!S_ISREG(status.st_mode)) return "it is no regular file";
    if (faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) != 0)
        return "it may not be read (" + systemText(errno) + ")";
    if (status.st_size == 0) return "it is empty";
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
