// Input by lines, with a bound on their length.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tessera_cli {

// Reads lines from a file descriptor as soon as they are complete. A line that is too long is skipped
// without being kept. One thread at a time.
class LineReader {
  public:
    // `wake` is a descriptor that becomes readable when waiting for input is to end; -1 for none. Neither is
    // closed here.
    LineReader(int descriptor, int wake, std::size_t maxLine)
        : m_descriptor(descriptor), m_wake(wake), m_maxLine(maxLine) {}

    // Goes to the next line; the last one may lack its line end. False at the end of input, when reading
    // fails, and when it was woken.
    [[nodiscard]] bool next();

    // The line without its end ("\n" or "\r\n"); "" when it was too long. Valid until next().
    [[nodiscard]] std::string_view line() const noexcept { return m_line; }
    [[nodiscard]] bool isTooLong() const noexcept { return m_tooLong; }
    // The errno of the read that failed, or 0.
    [[nodiscard]] int error() const noexcept { return m_error; }

  private:
    bool fill();
    bool waitForInput();

    int m_descriptor;
    int m_wake;
    std::size_t m_maxLine;
    std::string m_buffer;     // what was read and not yet passed on
    std::size_t m_begin = 0;  // of the next line in it
    std::string m_line;
    bool m_tooLong = false;
    bool m_atEnd = false;
    bool m_woken = false;
    int m_error = 0;
};

}  // namespace tessera_cli
