// What the program says.
#pragma once

#include <string>
#include <string_view>

#include "platform/relay2/messenger.h"

namespace tessera_cli {

// Prints `text` for people, on standard error: "tessera: " and the text, each line of it. Any thread.
void printMessage(std::string_view text);

// The same, unless whoever reads standard error would have to be waited for.
void printMessageWithoutWaiting(std::string_view text);

// Prints data to standard output; false, with a message, when that is closed or full.
[[nodiscard]] bool printText(std::string_view text);

// Prints what the library and the host tell the user, with the document's position where there is one.
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
