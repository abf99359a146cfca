#include "cli/log.h"

#include <log4cplus/configurator.h>
#include <log4cplus/consoleappender.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <system_error>

namespace tessera_cli {
namespace {

void logToStandardError() {
    const log4cplus::SharedAppenderPtr appender(new log4cplus::ConsoleAppender(true, true));
    appender->setLayout(std::make_unique<log4cplus::PatternLayout>(LOG4CPLUS_TEXT("%p %c - %m%n")));
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    root.removeAllAppenders();
    root.addAppender(appender);
    root.setLogLevel(log4cplus::INFO_LOG_LEVEL);
}

}  // namespace

std::string configureLog(const std::string& configFile, const std::string& level) {
    if (configFile.empty()) {
        logToStandardError();
    } else {
        if (std::ifstream file(configFile); !file || file.peek() == std::ifstream::traits_type::eof())
            return configFile + ": cannot read the log configuration: " +
                   (errno ? std::generic_category().message(errno) : "it is empty");
        log4cplus::PropertyConfigurator::doConfigure(configFile);
    }
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
