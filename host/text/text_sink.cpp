#include "host/text/text_sink.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

namespace tessera_host {

bool TextSink::flush() {
    const std::string_view block(m_block.get(), m_used);
    m_used = 0;
    if (m_good && !block.empty()) m_good = deliver(block);
    return m_good;
}

// The text does not fit into what is left of the block.
bool TextSink::writeAcross(std::string_view text) {
    if (!flush()) return false;
    if (text.size() >= blockSize) {
        m_good = deliver(text);
        return m_good;
    }
    return write(text);
}

bool StringSink::deliver(std::string_view block) {
    m_target += block;
    return true;
}

// Waits until the descriptor takes data; true when the waiting is to end instead.
bool FileSink::isWoken() const {
    if (m_wake < 0) return false;
    std::array<pollfd, 2> watched{pollfd{m_descriptor, POLLOUT, 0}, pollfd{m_wake, POLLIN, 0}};
    while (::poll(watched.data(), watched.size(), -1) < 0 && errno == EINTR)
        continue;
    return watched[1].revents != 0;
}

bool FileSink::deliver(std::string_view block) {
    while (!block.empty()) {
        if (isWoken()) {
            m_error = EINTR;
            return false;
        }
        // What a pipe that is ready takes without waiting for its reader.
        const std::size_t size = m_wake < 0 ? block.size() : std::min<std::size_t>(block.size(), PIPE_BUF);
        const ssize_t written = ::write(m_descriptor, block.data(), size);
        if (written > 0) {
            block.remove_prefix(static_cast<std::size_t>(written));
        } else if (written < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
            pollfd ready{m_descriptor, POLLOUT, 0};
            ::poll(&ready, 1, -1);
        } else if (written == 0 || errno != EINTR) {
            m_error = written == 0 ? EIO : errno;  // a write of nothing would only repeat itself
            return false;
        }
    }
    return true;
}

}  // namespace tessera_host
