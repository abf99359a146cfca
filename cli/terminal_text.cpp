#include "cli/terminal_text.h"

#include <fmt/format.h>
#include <unistd.h>

#include <iostream>

#include "cli/interrupt.h"
#include "host/text/text_sink.h"

namespace tessera_cli {
namespace {

constexpr std::size_t maxPending = 65536;  // of a line that does not end

// The first byte of the characters U+0080 to U+00BF in UTF-8. The next byte is the number of the character.
constexpr unsigned char leadByte = 0xc2;

bool isControl(unsigned char c) {
    return (c < 0x20 && c != '\n' && c != '\t') || c == 0x7f;
}

// Line and paragraph separators, and what changes the direction of the text after it: U+2028 to U+202E and U+2066 to
// U+2069, all of three bytes. The number of the character, or 0.
unsigned reorderingAt(std::string_view text) {
    if (text.size() < 3 || text[0] != '\xe2' || (text[1] != '\x80' && text[1] != '\x81')) return 0;
    const unsigned high = text[1] == '\x81' ? 0x40U : 0U;
    const unsigned number = 0x2000U + high + (static_cast<unsigned char>(text[2]) & 0x3FU);
    return (number >= 0x2028 && number <= 0x202E) || (number >= 0x2066 && number <= 0x2069) ? number : 0;
}

bool isHighControl(unsigned char c) {
    return c >= 0x80 && c < 0xa0;
}

}  // namespace

std::string terminalText(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto c = static_cast<unsigned char>(text[at]);
        const auto next = static_cast<unsigned char>(at + 1 < text.size() ? text[at + 1] : 0);
        if (c == leadByte && isHighControl(next)) {
            shown += fmt::format("\\x{:02x}", next);
            ++at;
        } else if (const unsigned number = reorderingAt(text.substr(at)); number != 0) {
            shown += fmt::format("\\u{:04x}", number);
            at += 2;
        } else if (isControl(c)) {
            shown += fmt::format("\\x{:02x}", c);
        } else {
            shown += text[at];
        }
    }
    return shown;
}

TerminalStreams::TerminalStreams()
    : m_errorBefore(std::cerr.rdbuf(this)), m_outputBefore(std::cout.rdbuf(this)) {}

TerminalStreams::~TerminalStreams() {
    std::cerr.rdbuf(m_errorBefore);
    std::cout.rdbuf(m_outputBefore);
}

void TerminalStreams::deliver(std::size_t size) {
    tessera_host::FileSink sink(STDERR_FILENO, interruptDescriptor());
    sink.write(terminalText(std::string_view(m_pending).substr(0, size)));
    (void)sink.flush();  // standard error is the last place to report to
    m_pending.erase(0, size);
}

TerminalStreams::int_type TerminalStreams::overflow(int_type c) {
    if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
    const char single = traits_type::to_char_type(c);
    xsputn(&single, 1);
    return c;
}

// std::cerr flushes after each piece, so flushing says nothing about where a line ends.
std::streamsize TerminalStreams::xsputn(const char* text, std::streamsize size) {
    const std::string_view piece(text, static_cast<std::size_t>(size));
    m_pending += piece;
    if (piece.find('\n') != std::string_view::npos)
        deliver(m_pending.rfind('\n') + 1);
    else if (m_pending.size() > maxPending)
        deliver(m_pending.size());
    return size;
}

}  // namespace tessera_cli
