#include "host/sqlite/database_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "host/queries/text.h"

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

// SQLite would answer one and the same for most of these, and would wait for a pipe's writer for ever.
std::string databaseFileProblem(const std::string& path) {
    if (path.empty() || path.find('\0') != std::string::npos) return quoted(path) + " is no name of a file";
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) return "there is no file " + quoted(path);
        return quoted(path) + " cannot be opened (" + systemText(errno) + ")";
    }
    if (S_ISDIR(status.st_mode)) return quoted(path) + " is a directory";
    if (!S_ISREG(status.st_mode)) return quoted(path) + " is no regular file";
    if (faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) != 0)
        return quoted(path) + " may not be read (" + systemText(errno) + ")";
    if (status.st_size == 0) return quoted(path) + " is empty";
    return {};
}

// Names such as "file:x?mode=rw" and ":memory:" mean something else to SQLite unless a folder is in front.
std::string literalPath(const std::string& path) {
    return path.front() == '/' ? path : "./" + path;
}

}  // namespace tessera_host
