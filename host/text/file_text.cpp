#include "host/text/file_text.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace tessera_host {
namespace {

using tessera_support::CancelToken;

constexpr std::size_t smallestPiece = std::size_t{64} * 1024;
// The longest time until a cancelled wait ends.
constexpr int pollMilliseconds = 50;

class Descriptor {
  public:
    explicit Descriptor(const std::string& path) : m_number(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (m_number >= 0) ::close(m_number);
    }
    [[nodiscard]] int get() const noexcept { return m_number; }

  private:
    int m_number;
};

Error unreadable(int error) {
    switch (error) {
        case ENOENT:
            return {ErrorKind::cannotOpen, "there is no such file", {}};
        case EISDIR:
            return {ErrorKind::cannotOpen, "this is a directory, not a file", {}};
        case EACCES:
            return {ErrorKind::cannotOpen, "there is no permission to read the file", {}};
        default:
            return {ErrorKind::cannotOpen,
                    "the file cannot be read: " + std::generic_category().message(error),
                    {}};
    }
}

Error tooLong() {
    return {ErrorKind::cannotOpen, "the file has more than 1 GiB, the most that is read", {}};
}

// Waits until something can be read; false when the work was cancelled.
bool waitForInput(int descriptor, const CancelToken& token) {
    while (!token.isCancelled()) {
        pollfd input{descriptor, POLLIN, 0};
        if (::poll(&input, 1, pollMilliseconds) > 0) return true;
    }
    return false;
}

// A first guess only: pipes have no size, and a file may grow.
std::size_t expectedSize(int descriptor) {
    struct stat status {};
    const bool isKnown = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0;
    return isKnown ? static_cast<std::size_t>(status.st_size) : 0;
}

}  // namespace

Expected<std::string> readFileText(const std::string& path, const CancelToken& token) {
    const Descriptor file(path);
    if (file.get() < 0 && errno == EINTR && token.isCancelled()) return cancelledError();
    if (file.get() < 0) return unreadable(errno);

    const std::size_t expected = expectedSize(file.get());
    if (expected > maxFileText) return tooLong();
    std::size_t used = 0;
    std::string text(std::max(expected + 1, smallestPiece), '\0');  // one byte more, to meet the end
    while (waitForInput(file.get(), token)) {
        if (used > maxFileText) return tooLong();
        // Doubled, so that the copies of a long pipe cost time proportional to its length.
        if (used == text.size()) text.resize(2 * text.size());
        const ssize_t count = ::read(file.get(), text.data() + used, text.size() - used);
        if (count > 0) {
            used += static_cast<std::size_t>(count);
        } else if (count == 0) {
            text.resize(used);
            return text;
        } else if (errno != EINTR) {
            return unreadable(errno);
        }
    }
    return cancelledError();
}

}  // namespace tessera_host
