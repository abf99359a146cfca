#include "cli/log.h"

#include <log4cplus/configurator.h>
#include <log4cplus/consoleappender.h>
#include <log4cplus/helpers/property.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iostream>
#include <sstream>
#include <system_error>
#include <utility>

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

// The error has a line for each mistake in the file.
Expected<void> configureFrom(const std::string& file) {
    errno = 0;
    if (std::ifstream stream(file); !stream || stream.peek() == std::ifstream::traits_type::eof())
        return Error{ErrorKind::cannotOpen,
                     file + ": cannot read the log configuration: " +
                         (errno ? std::generic_category().message(errno) : "it is empty")};
    const HeldMessages messages;
    log4cplus::helpers::Properties settings(file);
    keepOffStandardOutput(settings);
    log4cplus::PropertyConfigurator(settings).configure();
    std::istringstream lines(messages.text());
    std::string problems = hasAppender() ? "" : file + ": no logger has an appender";
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
