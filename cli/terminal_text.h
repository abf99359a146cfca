// Text of documents and databases on a terminal.
#pragma once

#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

namespace tessera_cli {

// The text with each control character as an escape such as \x1b, so that it cannot move the cursor of a
// terminal, rename its window or hide what stands before it. The same for what reorders the text of a line, as
// \u202e. Newlines and tabs stay. Other bytes stay as they are.
[[nodiscard]] std::string terminalText(std::string_view text);

// While it lives, what is written to std::cerr and std::cout goes to standard error as terminal text, a line
// at a time. The log and mistakes in its settings come this way. An interruption ends waiting for a slow
// reader, and what is written after it is lost. Made by main; the log writes from any thread under a lock of
// its own.
class TerminalStreams final : private std::streambuf {
  public:
    TerminalStreams();
    ~TerminalStreams() override;
    TerminalStreams(const TerminalStreams&) = delete;
    TerminalStreams& operator=(const TerminalStreams&) = delete;

  private:
    int_type overflow(int_type c) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    void deliver(std::size_t size);

    std::string m_pending;  // the line so far
    std::streambuf* m_errorBefore;
    std::streambuf* m_outputBefore;
};

}  // namespace tessera_cli
