#include "cli/line_reader.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace tessera_cli {

// False when waiting was ended or cannot be done.
bool LineReader::waitForInput() {
    std::array<pollfd, 2> watched{pollfd{m_descriptor, POLLIN, 0}, pollfd{m_wake, POLLIN, 0}};
    while (poll(watched.data(), watched.size(), -1) < 0)
        if (errno != EINTR) {
            m_error = errno;
            return false;
        }
    m_woken = watched[1].revents != 0;
    return !m_woken;
}

// Reads more after what is left; false when there is nothing more.
bool LineReader::fill() {
    constexpr std::size_t blockSize = 65536;
    m_buffer.erase(0, m_begin);
    m_begin = 0;
    const std::size_t kept = m_buffer.size();
    m_buffer.resize(kept + blockSize);
    ssize_t got = 0;
    if (waitForInput()) {
        do
            got = read(m_descriptor, m_buffer.data() + kept, blockSize);
        while (got < 0 && errno == EINTR);
        if (got < 0) m_error = errno;
    }
    m_buffer.resize(kept + (got > 0 ? static_cast<std::size_t>(got) : 0));
    return got > 0;
}

bool LineReader::next() {
    m_line.clear();
    m_tooLong = false;
    bool isLine = false;  // something stands on it, or it has an end
    while (!m_atEnd) {
        const std::size_t end = m_buffer.find('\n', m_begin);
        const std::size_t stop = end == std::string::npos ? m_buffer.size() : end;
        isLine = isLine || stop > m_begin || end != std::string::npos;
        if (m_line.size() + (stop - m_begin) > m_maxLine) m_tooLong = true;
        if (m_tooLong)
            m_line.clear();
        else
            m_line.append(m_buffer, m_begin, stop - m_begin);
        m_begin = end == std::string::npos ? stop : end + 1;
        if (end != std::string::npos) break;
        if (!fill()) m_atEnd = true;
    }
    if (m_woken) return false;
    if (!m_line.empty() && m_line.back() == '\r') m_line.pop_back();
    return isLine;
}

}  // namespace tessera_cli
