#include "cli/log_settings.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "host/text/file_text.h"

namespace tessera_cli {
namespace {

using tessera_host::Error;
using tessera_host::ErrorKind;
using tessera_host::Expected;

constexpr std::size_t maxFiles = 100;
constexpr std::size_t maxSettings = std::size_t{1} << 20U;
constexpr int maxThreads = 64;

bool isSpace(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

// The name in a line "include NAME", as the logging library reads it.
std::optional<std::string> includedBy(std::string_view line) {
    constexpr std::string_view word = "include";
    line = trimmed(line);
    const bool isInclude = line.starts_with(word) && line.find('=') == std::string_view::npos &&
                           line.size() > word.size() && isSpace(line[word.size()]);
    return isInclude ? std::optional<std::string>(trimmed(line.substr(word.size()))) : std::nullopt;
}

Error refused(const std::string& file, const std::string& reason) {
    return {ErrorKind::cannotOpen, file + ": cannot read the log configuration: " + reason};
}

Expected<void> checkThreads(const std::string& file, std::string_view line) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || trimmed(line.substr(0, equals)) != "log4cplus.threadPoolSize")
        return {};
    const std::string_view value = trimmed(line.substr(equals + 1));
    int threads = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), threads);
    const bool isNumber = error == std::errc() && end == value.data() + value.size();
    if (isNumber && threads >= 0 && threads <= maxThreads) return {};
    return refused(file, "log4cplus.threadPoolSize is not from 0 to " + std::to_string(maxThreads));
}

// The logging library would fill up to any width, and nothing could stop it.
Expected<void> checkWidths(const std::string& file, std::string_view line) {
    constexpr std::size_t maxDigits = 4;
    std::size_t digits = 0;  // of the number at the end of what was seen, when it follows a "%"
    bool isConversion = false;
    for (const char c : line) {
        const bool isDigit = std::isdigit(static_cast<unsigned char>(c)) != 0;
        isConversion = c == '%' || (isConversion && (isDigit || c == '-' || c == '.'));
        digits = isConversion && isDigit ? digits + 1 : 0;
        if (digits > maxDigits) return refused(file, "a width in a layout is larger than 9999");
    }
    return {};
}

// The files that are being read: each includes the next one.
class Reading {
  public:
    explicit Reading(tessera_support::CancelToken token) : m_token(std::move(token)) {}

    Expected<void> begin(const std::string& file) {
        const auto sameFile = [&](const Open& each) { return each.name == file; };
        if (std::any_of(m_open.begin(), m_open.end(), sameFile)) return refused(file, "it includes itself");
        if (++m_files > maxFiles)
            return refused(file, "more than " + std::to_string(maxFiles) + " files are included");
        auto text = tessera_host::readFileText(file, m_token);
        if (!text && text.error().isCancelled()) return text.error();
        if (!text) return refused(file, text.error().text);
        if (text->empty()) return refused(file, "it is empty");
        m_open.push_back({file, *std::move(text)});
        return {};
    }

    // Moves one line to the result, or begins the file that it includes.
    Expected<void> step() {
        Open& open = m_open.back();
        if (open.next >= open.text.size()) {
            m_open.pop_back();
            return {};
        }
        const std::size_t end = std::min(open.text.find('\n', open.next), open.text.size());
        const std::string_view line = std::string_view(open.text).substr(open.next, end - open.next);
        open.next = end + 1;
        if (const auto included = includedBy(line)) return begin(*included);
        if (auto good = checkThreads(open.name, line); !good) return good;
        if (auto good = checkWidths(open.name, line); !good) return good;
        m_result.append(line).append("\n");
        if (m_result.size() > maxSettings) return refused(open.name, "there is more than 1 MiB of it");
        return {};
    }

    [[nodiscard]] bool isDone() const { return m_open.empty(); }
    [[nodiscard]] std::string takeResult() { return std::move(m_result); }

  private:
    struct Open {
        std::string name;
        std::string text;
        std::size_t next = 0;  // where the next line begins
    };

    tessera_support::CancelToken m_token;
    std::vector<Open> m_open;
    std::string m_result;
    std::size_t m_files = 0;
};

}  // namespace

Expected<std::string> readLogSettings(const std::string& file, const tessera_support::CancelToken& token) {
    Reading reading(token);
    if (auto begun = reading.begin(file); !begun) return std::move(begun).error();
    while (!reading.isDone())
        if (auto stepped = reading.step(); !stepped) return std::move(stepped).error();
    return reading.takeResult();
}

}  // namespace tessera_cli
