#include "host/text/file_text.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "host/text/descriptor_name.h"

namespace tessera_host {
namespace {

using tessera_support::CancelToken;

constexpr std::size_t smallestPiece = std::size_t{64} * 1024;
// The longest time until a cancelled wait ends.
constexpr int pollMilliseconds = 50;

class Descriptor {
  public:
    explicit Descriptor(int number) : m_number(number) {}
    Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (m_number >= 0) ::close(m_number);
    }
    [[nodiscard]] int get() const noexcept { return m_number; }

  private:
    int m_number;
};

Error refused(std::string text) {
    return {ErrorKind::cannotOpen, std::move(text), {}};
}

Error unreadable(int error) {
    switch (error) {
        case ENOENT:
            return refused("there is no such file");
        case EISDIR:
            return refused("this is a directory, not a file");
        case EACCES:
            return refused("there is no permission to read the file");
        default:
            return refused("the file cannot be read: " + std::generic_category().message(error));
    }
}

Error tooLong() {
    return refused("the file has more than 256 MiB, the most that is read");
}

Expected<void> requireRegular(const struct stat& status) {
    if (S_ISREG(status.st_mode)) return {};
    if (S_ISDIR(status.st_mode)) return unreadable(EISDIR);
    if (S_ISFIFO(status.st_mode)) return refused("this is a named pipe, not a file");
    if (S_ISSOCK(status.st_mode)) return refused("this is a socket, not a file");
    return refused("this is a device, not a file");
}

// What another program handed over: it has an end where that program ends it. Of the devices only terminals
// and /dev/null have one.
Expected<void> requireStream(int descriptor, const struct stat& status) {
    const bool isNull = S_ISCHR(status.st_mode) && status.st_rdev == makedev(1, 3);
    if (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode) || isNull || ::isatty(descriptor) == 1)
        return {};
    return requireRegular(status);
}

Expected<Descriptor> duplicate(int number) {
    Descriptor file(::fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    if (file.get() < 0) return unreadable(errno == EBADF ? ENOENT : errno);
    struct stat status {};
    if (::fstat(file.get(), &status) != 0) return unreadable(errno);
    if (auto good = requireStream(file.get(), status); !good) return std::move(good).error();
    return file;
}

// Looked at before it is opened, because opening a device can do something; and after it, because the name
// may lead elsewhere by then.
Expected<Descriptor> openRegular(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return unreadable(errno);
    if (auto good = requireRegular(status); !good) return std::move(good).error();
    Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (file.get() < 0) return unreadable(errno);
    if (::fstat(file.get(), &status) != 0) return unreadable(errno);
    if (auto good = requireRegular(status); !good) return std::move(good).error();
    return file;
}

// Waits until something can be read; false when the work was cancelled.
bool waitForInput(int descriptor, const CancelToken& token) {
    while (!token.isCancelled()) {
        pollfd input{descriptor, POLLIN, 0};
        const int ready = ::poll(&input, 1, pollMilliseconds);
        if (ready > 0 || (ready < 0 && errno != EINTR)) return true;
    }
    return false;
}

// A first guess only: pipes have no size, and a file may grow.
std::size_t expectedSize(int descriptor) {
    struct stat status {};
    const bool isKnown = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0;
    return isKnown ? static_cast<std::size_t>(status.st_size) : 0;
}

Expected<std::string> readToEnd(int descriptor, const CancelToken& token) {
    const std::size_t expected = expectedSize(descriptor);
    if (expected > maxFileText) return tooLong();
    std::size_t used = 0;
    std::string text(std::max(expected + 1, smallestPiece), '\0');  // one byte more, to meet the end
    while (waitForInput(descriptor, token)) {
        if (used > maxFileText) return tooLong();
        // Doubled, so that the copies of a long pipe cost time proportional to its length.
        if (used == text.size()) text.resize(std::min(2 * text.size(), maxFileText + 1));
        const ssize_t count = ::read(descriptor, text.data() + used, text.size() - used);
        if (count > 0) {
            used += static_cast<std::size_t>(count);
        } else if (count == 0) {
            text.resize(used);
            return text;
        } else if (errno != EINTR && errno != EAGAIN) {
            return unreadable(errno);
        }
    }
    return cancelledError();
}

}  // namespace

Expected<std::string> readFileText(const std::string& path, const CancelToken& token) {
    const auto number = descriptorBehind(path);
    const auto file = number ? duplicate(*number) : openRegular(path);
    if (!file) return token.isCancelled() ? cancelledError() : file.error();
    return readToEnd(file->get(), token);
}

}  // namespace tessera_host
