#include "cli/output_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <linux/magic.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <system_error>
#include <utility>

#include "cli/interrupt.h"
#include "cli/standard_descriptors.h"
#include "host/text/descriptor_name.h"

namespace tessera_cli {
namespace {

namespace fs = std::filesystem;

constexpr int maxLinks = 40;  // as many as the kernel follows
constexpr int readerWaitMilliseconds = 50;

std::string folderOf(const std::string& path) {
    const fs::path folder = fs::path(path).parent_path();
    return folder.empty() ? "." : folder.string();
}

// Whether the folder shows the system's own objects: its links lead to files that the user did not name, such
// as the program that runs.
bool isOfTheSystem(const std::string& folder) {
    struct statfs status {};
    return statfs(folder.c_str(), &status) == 0 && status.f_type == PROC_SUPER_MAGIC;
}

// Follows the links that `path` ends in, also to a file that does not exist yet, but not those that represent
// descriptors: a link stays a link, and what it points to is written. Returns 0, or the errno.
int followLinks(std::string& path) {
    for (int links = 0; links < maxLinks; ++links) {
        std::error_code noLink;
        const fs::path target = fs::read_symlink(path, noLink);
        if (noLink || tessera_host::descriptorNamed(path)) return 0;
        if (isOfTheSystem(folderOf(path))) return EPERM;
        path = (fs::path(path).parent_path() / target).string();
    }
    return ELOOP;
}

// Where the system keeps the name of an open file that has no other.
std::string descriptorPath(int descriptor) {
    return fmt::format("/proc/self/fd/{}", descriptor);
}

}  // namespace

OutputFile::~OutputFile() {
    if (m_descriptor >= 0 && m_descriptor != dataOutput()) close(m_descriptor);
    if (!m_temporary.empty()) unlink(m_temporary.c_str());
}

tessera_host::Error OutputFile::failure(int number) const {
    return {tessera_host::ErrorKind::cannotOpen,
            (m_path.empty() ? "standard output" : m_path) +
                ": cannot write: " + std::generic_category().message(number),
            {}};
}

OutputFile::Outcome OutputFile::open(const std::string& path) {
    if (path.empty() || path == "-") {
        m_descriptor = dataOutput();
        m_sink = std::make_unique<tessera_host::FileSink>(m_descriptor, interruptDescriptor());
        return {};
    }
    m_path = path;
    if (const int number = followLinks(m_path); number != 0) return failure(number);
    if (const auto descriptor = tessera_host::descriptorNamed(m_path)) return openAgain(*descriptor);

    struct stat status {};
    const bool exists = stat(m_path.c_str(), &status) == 0;
    if (exists && S_ISDIR(status.st_mode)) return failure(EISDIR);
    if (exists && !S_ISREG(status.st_mode)) return openDirectly(S_ISFIFO(status.st_mode));
    if (exists && access(m_path.c_str(), W_OK) != 0) return failure(errno);
    if (auto opened = openBeside(); !opened) return opened;
    const mode_t mask = umask(0);
    umask(mask);
    // Content of another's document must not gain the rights that the old file gave to whoever runs it.
    fchmod(m_descriptor, exists ? status.st_mode & 0777U : 0666U & ~mask);
    m_sink = std::make_unique<tessera_host::FileSink>(m_descriptor);
    return {};
}

// Opening its name would begin anew at the start of a file that others have written to.
OutputFile::Outcome OutputFile::openAgain(int descriptor) {
    const int meant = descriptor == STDOUT_FILENO ? dataOutput() : descriptor;
    m_descriptor = fcntl(meant, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (m_descriptor < 0) return failure(errno);
    m_sink = std::make_unique<tessera_host::FileSink>(m_descriptor, interruptDescriptor());
    return {};
}

// A named pipe can be opened once another program reads it; an interruption ends the waiting. Other files say the same
// when they can never be opened.
OutputFile::Outcome OutputFile::openDirectly(bool isPipe) {
    pollfd interruption{interruptDescriptor(), POLLIN, 0};
    while ((m_descriptor = ::open(m_path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC)) < 0) {
        if (errno != EINTR && (errno != ENXIO || !isPipe)) return failure(errno);
        (void)poll(&interruption, 1, readerWaitMilliseconds);
        if (isInterrupted()) return failure(EINTR);
    }
    fcntl(m_descriptor, F_SETFL, O_WRONLY);
    m_sink = std::make_unique<tessera_host::FileSink>(m_descriptor, interruptDescriptor());
    return {};
}

OutputFile::Outcome OutputFile::openBeside() {
    m_descriptor = ::open(folderOf(m_path).c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, S_IRUSR | S_IWUSR);
    m_unnamed = m_descriptor >= 0;
    if (m_unnamed && access(descriptorPath(m_descriptor).c_str(), F_OK) != 0) {
        close(m_descriptor);  // it could never be named
        m_unnamed = false;
    }
    if (m_unnamed) return {};
    std::string name = folderOf(m_path) + "/.tessera-XXXXXX";
    m_descriptor = mkostemp(name.data(), O_CLOEXEC);
    if (m_descriptor < 0) return failure(errno);
    m_temporary = std::move(name);  // takes no memory, which may be short
    return {};
}

// Gives the file a name beside the final one, to be renamed: only so can it take a name that exists.
bool OutputFile::nameUnnamed() {
    std::random_device random;
    const std::string source = descriptorPath(m_descriptor);
    while (true) {
        std::string name = fmt::format("{}/.tessera-{:08x}", folderOf(m_path), random());
        if (linkat(AT_FDCWD, source.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
            m_temporary = std::move(name);  // takes no memory, which may be short
            return true;
        }
        if (errno != EEXIST) return false;
    }
}

int OutputFile::flush() {
    return m_sink->flush() ? 0 : m_sink->error();
}

OutputFile::Outcome OutputFile::commit() {
    const int number = m_failure != 0 ? m_failure : flush();
    if (number != 0) return failure(number);
    if (m_temporary.empty() && !m_unnamed) return {};
    if (fsync(m_descriptor) != 0) return failure(errno);
    if (m_unnamed && !nameUnnamed()) return failure(errno);
    if (rename(m_temporary.c_str(), m_path.c_str()) != 0) return failure(errno);
    m_temporary.clear();
    return {};
}

}  // namespace tessera_cli
