#include "cli/message.h"

#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

#include <system_error>

#include "cli/standard_descriptors.h"
#include "cli/terminal_text.h"
#include "host/text/text_sink.h"

namespace tessera_cli {

void printMessage(std::string_view text) {
    // All lines are written at once, so that those of other processes do not come between them.
    std::string lines;
    while (true) {
        const std::size_t end = text.find('\n');
        lines += fmt::format("tessera: {}\n", terminalText(text.substr(0, end)));
        if (end == std::string_view::npos || end + 1 == text.size()) break;
        text.remove_prefix(end + 1);
    }
    tessera_host::FileSink sink(STDERR_FILENO);
    if (sink.write(lines)) (void)sink.flush();  // standard error is the last place to report to
}

void printMessageWithoutWaiting(std::string_view text) {
    // Without a timeout: a reader that has stopped reading must not keep an interrupted program alive.
    pollfd ready{STDERR_FILENO, POLLOUT, 0};
    if (::poll(&ready, 1, 0) == 1 && (ready.revents & POLLOUT) != 0) printMessage(text);
}

tessera_host::Expected<void> printToStdout(std::string_view text) {
    tessera_host::FileSink sink(dataOutput());
    if (sink.write(text) && sink.flush()) return {};
    return tessera_host::Error{
        tessera_host::ErrorKind::cannotOpen,
        fmt::format("standard output: cannot write: {}", std::generic_category().message(sink.error())),
        {}};
}

std::string_view nameOf(relay2::severity_t severity) noexcept {
    switch (severity) {
        case relay2::severity_t::note:
            return "note";
        case relay2::severity_t::warning:
            return "warning";
        case relay2::severity_t::error:
            break;
    }
    return "error";
}

void ConsoleMessenger::post(relay2::severity_t severity, const std::string& text,
                            basekit2::source_position_t position) {
    if (severity == relay2::severity_t::error) ++m_errors;
    std::string line = tessera_host::placeIn(m_document, position) + ": ";
    if (severity != relay2::severity_t::note) line.append(nameOf(severity)).append(": ");
    printMessage(line + text);
}

}  // namespace tessera_cli
