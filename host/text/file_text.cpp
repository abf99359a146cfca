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

constexpr std::size_t smallestPiece = std::size_t{64} * 1024;
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

ReadError unreadable(int error) {
    ReadError answer;
    answer.unopened = true;
    switch (error) {
        case ENOENT:
            answer.text = "there is no such file";
            break;
        case EISDIR:
            answer.text = "this is a directory, not a file";
            break;
        case EACCES:
            answer.text = "there is no permission to read the file";
            break;
        default:
            answer.text = "the file cannot be read: " + std::generic_category().message(error);
    }
    return answer;
}

ReadError cancelled() {
    return ReadError{.text = "cancelled", .position = {}, .cancelled = true};
}

ReadError tooLong() {
    ReadError answer;
    answer.unopened = true;
    answer.text = "the file has more than 1 GiB, the most that is read";
    return answer;
}

// Waits until something can be read; false when the work has been cancelled.
bool waitForInput(int descriptor, relay2::IProgress* progress) {
    if (!progress) return true;
    while (!progress->isCancelled()) {
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

std::optional<ReadError> readFileText(const std::string& path, std::string& text,
                                      relay2::IProgress* progress) {
    const Descriptor file(path);
    if (file.get() < 0 && errno == EINTR && progress && progress->isCancelled()) return cancelled();
    if (file.get() < 0) return unreadable(errno);

    const std::size_t expected = expectedSize(file.get());
    if (expected > maxFileText) return tooLong();
    std::size_t used = 0;
    text.resize(std::max(expected + 1, smallestPiece));  // one more, to meet the end
    while (waitForInput(file.get(), progress)) {
        if (used > maxFileText) return tooLong();
        if (used == text.size()) text.resize(2 * text.size());
        const ssize_t count = ::read(file.get(), text.data() + used, text.size() - used);
        if (count > 0) {
            used += static_cast<std::size_t>(count);
        } else if (count == 0) {
            text.resize(used);
            return std::nullopt;
        } else if (errno != EINTR) {
            return unreadable(errno);
        }
    }
    return cancelled();
}

}  // namespace tessera_host
