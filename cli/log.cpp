#include "cli/log.h"

#include <log4cplus/configurator.h>
#include <log4cplus/consoleappender.h>
#include <log4cplus/helpers/property.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>

#include <algorithm>
#include <cctype>
#include <exception>
#include <iostream>
#include <sstream>
#include <utility>

#include "cli/interrupt.h"
#include "cli/log_settings.h"

namespace tessera_cli {
namespace {

using tessera_host::Error;
using tessera_host::ErrorKind;
using tessera_host::Expected;

void logToStandardError() {
    const log4cplus::SharedAppenderPtr appender(new log4cplus::ConsoleAppender(true, true));
    appender->setLayout(std::make_unique<log4cplus::PatternLayout>(LOG4CPLUS_TEXT("%p %c - %m%n")));
    // Only the root has an appender: all loggers pass their events on to it.
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    root.removeAllAppenders();
    root.addAppender(appender);
    root.setLogLevel(log4cplus::INFO_LOG_LEVEL);
}

// Holds back what is written to std::cerr meanwhile, which is how log4cplus reports mistakes in its
// settings.
class HeldMessages {
  public:
    HeldMessages() : m_before(std::cerr.rdbuf(m_text.rdbuf())) {}
    ~HeldMessages() { std::cerr.rdbuf(m_before); }
    HeldMessages(const HeldMessages&) = delete;
    HeldMessages& operator=(const HeldMessages&) = delete;

    [[nodiscard]] std::string text() const { return m_text.str(); }

  private:
    std::ostringstream m_text;
    std::streambuf* m_before;
};

// Standard output is for data: an appender for the console writes to standard error, whatever was set.
void keepOffStandardOutput(log4cplus::helpers::Properties& settings) {
    const auto appenders = settings.getPropertySubset(LOG4CPLUS_TEXT("log4cplus.appender."));
    for (const auto& name : appenders.propertyNames())
        if (appenders.getProperty(name) == LOG4CPLUS_TEXT("log4cplus::ConsoleAppender"))
            settings.setProperty("log4cplus.appender." + name + ".logToStdErr", "true");
}

bool hasAppender() {
    auto loggers = log4cplus::Logger::getCurrentLoggers();
    loggers.push_back(log4cplus::Logger::getRoot());
    return std::any_of(loggers.begin(), loggers.end(),
                       [](log4cplus::Logger& each) { return !each.getAllAppenders().empty(); });
}

// Throws what the library throws.
void applySettings(const std::string& text) {
    std::istringstream stream(text);
    log4cplus::helpers::Properties settings(stream);
    keepOffStandardOutput(settings);
    log4cplus::PropertyConfigurator(settings).configure();
}

// What the library says against the settings, a line for each mistake.
std::string configure(const std::string& text) {
    const HeldMessages messages;
    try {
        applySettings(text);
    } catch (const std::exception& error) {
        return messages.text() + error.what() + '\n';
    }
    return messages.text() + (hasAppender() ? "" : "no logger has an appender\n");
}

// The error has a line for each mistake in the file.
Expected<void> configureFrom(const std::string& file) {
    const auto settings = readLogSettings(file, interruptToken());
    if (!settings) return settings.error();
    std::istringstream lines(configure(*settings));
    std::string problems;
    for (std::string line; std::getline(lines, line);)
        problems.append(problems.empty() ? "" : "\n").append(file).append(": ").append(line);
    if (!problems.empty()) return Error{ErrorKind::cannotOpen, std::move(problems)};
    return {};
}

}  // namespace

Expected<void> configureLog(const std::string& configFile, const std::string& level) {
    if (configFile.empty())
        logToStandardError();
    else if (auto configured = configureFrom(configFile); !configured)
        return configured;
    if (!level.empty()) {
        std::string name = level;
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char c) { return std::toupper(c); });
        log4cplus::Logger::getRoot().setLogLevel(log4cplus::getLogLevelManager().fromString(name));
    }
    return {};
}

void closeLog() {
    log4cplus::Logger::shutdown();
}

}  // namespace tessera_cli
