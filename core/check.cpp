#include "core/check.h"

#include "platform/RTBASE_2_18/assertion.h"
#include "platform/basekit2/environ.h"
#include "platform/diaglog_1/log.h"

namespace tessera_1::check {
namespace {

constexpr const char* componentName = "tessera";
constexpr log4cplus::LogLevel errorLevel = 40000;
constexpr log4cplus::LogLevel infoLevel = 20000;

// Whether a report made here reaches the log or the assertion; otherwise its text need not be formed.
bool isReceived(const Place& place) {
    return place.unit.logger().isEnabledFor(errorLevel) || place.unit.assertionsOn();
}

std::string inSignature(const std::string& text, const Place& place) {
    return text + " in " + place.signature;
}

// Logs `text` and the place, then raises the assertion if that is switched on.
void report(const Place& place, const std::string& text) {
    const log4cplus::Logger& logger = place.unit.logger();
    if (logger.isEnabledFor(errorLevel))
        logger.forcedLog(errorLevel,
                         text + ", at file: " + place.unit.path() + ":" + std::to_string(place.line),
                         place.unit.path(), place.line, place.signature);
    if (place.unit.assertionsOn())
        RTBASE_2_18::assertion_failed(text.c_str(), place.signature, place.unit.path(), place.line);
}

}  // namespace

SourceUnit::SourceUnit(const char* path)
    : m_path(path), m_logger(diaglog_1::log::configureComponentLogger(componentName)) {}

bool SourceUnit::assertionsOn() const {
    std::call_once(m_switchRead, [this] {
        const std::string value = basekit2::get_environ_value(std::string(componentName) + "_ERROR_HANDLING");
        m_assertionsOn = value.find("assert") != std::string::npos;
    });
    return m_assertionsOn;
}

void failed(const Place& place, const char* condition, bool /*again*/) {
    if (isReceived(place)) report(place, inSignature(std::string("Check failed: ") + condition, place));
}

basekit2::error_code_t failedWith(const Place& place, const char* condition, bool /*again*/,
                                  const char* expression, const basekit2::error_t& error) {
    if (isReceived(place))
        report(place, inSignature(std::string("Check failed: ") + condition, place) + " '" + expression +
                          ":" + error.message().str() + "'");
    return basekit2::error_code_t::raise(error, place.signature, place.unit.path(), place.line);
}

void alert(const Place& place, const std::string& message) {
    if (isReceived(place)) report(place, inSignature(message, place));
    const log4cplus::Logger& logger = place.unit.logger();
    if (logger.isEnabledFor(infoLevel))
        logger.forcedLog(infoLevel, message, place.unit.path(), place.line, place.signature);
}

}  // namespace tessera_1::check
