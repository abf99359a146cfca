#include "cli/output_file.h"

#include "cli/interrupt.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace tessera_cli {

OutputFile::~OutputFile() {
    if (m_descriptor > STDERR_FILENO) close(m_descriptor);
    if (!m_temporary.empty()) unlink(m_temporary.c_str());
}

bool OutputFile::fail(int number) {
    m_error = (m_path.empty() ? "standard output" : m_path) +
              ": cannot write: " + std::generic_category().message(number);
    return false;
}

bool OutputFile::open(const std::string& path) {
    if (path.empty() || path == "-") {
        m_descriptor = STDOUT_FILENO;
        m_sink = std::make_unique<tessera_host::FileSink>(m_descriptor, interruptDescriptor());
        return true;
    }
    m_path = path;
    // A link stays a link: what it points to is replaced.
    std::error_code unresolved;
    const auto target = std::filesystem::canonical(path, unresolved);
    if (!unresolved) m_path = target.string();

    struct stat status {};
    const bool exists = stat(m_path.c_str(), &status) == 0;
    if (exists && S_ISDIR(status.st_mode)) return fail(EISDIR);
    if (exists && !S_ISREG(status.st_mode)) {
        m_descriptor = ::open(m_path.c_str(), O_WRONLY | O_CLOEXEC);
        if (m_descriptor < 0) return fail(errno);
    } else {
        if (exists && access(m_path.c_str(), W_OK) != 0) return fail(errno);
        if (!openBeside()) return false;
        const mode_t mask = umask(0);
        umask(mask);
        fchmod(m_descriptor, exists ? status.st_mode & 07777U : 0666U & ~mask);
    }
    m_sink = std::make_unique<tessera_host::FileSink>(m_descriptor);
    return true;
}

bool OutputFile::openBeside() {
    std::string name = m_path + ".XXXXXX";
    m_descriptor = mkostemp(name.data(), O_CLOEXEC);
    if (m_descriptor < 0) return fail(errno);
    m_temporary = name;
    return true;
}

bool OutputFile::commit() {
    if (!m_sink->flush()) return fail(m_sink->error());
    if (m_temporary.empty()) return true;
    if (fsync(m_descriptor) != 0 || rename(m_temporary.c_str(), m_path.c_str()) != 0) return fail(errno);
    m_temporary.clear();
    return true;
}

}  // namespace tessera_cli
