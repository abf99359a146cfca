// Messages of the program for people.
#pragma once

#include <string>
#include <string_view>

#include "host/error.h"
#include "platform/relay2/messenger.h"

namespace tessera_cli {

// Prints each line of `text` on standard error, with "tessera: " in front. Any thread.
void printMessage(std::string_view text);

// The same, unless the reader of standard error is not ready: then nothing is printed. For the end of a
// program that was interrupted.
void printMessageWithoutWaiting(std::string_view text);

// Prints data to standard output. The error has the kind cannotOpen when that is closed or full.
[[nodiscard]] tessera_host::Expected<void> printToStdout(std::string_view text);

// "note", "warning" or "error".
[[nodiscard]] std::string_view nameOf(relay2::severity_t severity) noexcept;

// Prints the messages of the library and the host as "DOCUMENT:LINE:COLUMN: SEVERITY: TEXT", without the
// position where there is none; a note has no severity either. One thread at a time.
class ConsoleMessenger final : public relay2::IMessenger {
  public:
    explicit ConsoleMessenger(std::string document) : m_document(std::move(document)) {}

    void post(relay2::severity_t severity, const std::string& text,
              basekit2::source_position_t position) override;

    // How many errors were posted so far.
    [[nodiscard]] int errorCount() const noexcept { return m_errors; }

  private:
    std::string m_document;
    int m_errors = 0;
};

}  // namespace tessera_cli
