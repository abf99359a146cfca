// Captures the library's log for tests.
#pragma once

#include <log4cplus/appender.h>
#include <log4cplus/logger.h>
#include <log4cplus/spi/loggingevent.h>

#include <mutex>
#include <string>
#include <vector>

namespace tessera_test {

struct LogLine {
    std::string level;
    std::string text;
    std::string logger;
};

// While it exists, collects all messages of the logger "tessera".
class LogCapture {
  public:
    LogCapture() : m_appender(new Collector(*this)) {
        logger().setLogLevel(log4cplus::TRACE_LOG_LEVEL);
        logger().setAdditivity(false);
        logger().addAppender(m_appender);
    }
    ~LogCapture() { logger().removeAppender(m_appender); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // The reports in order, without their places: "ERROR check CONDITION", "ERROR alert MESSAGE",
    // "INFO MESSAGE".
    std::vector<std::string> reports() const {
        std::vector<std::string> out;
        for (const LogLine& line : lines())
            out.push_back(withoutPlace(line));
        return out;
    }
    std::vector<LogLine> lines() const {
        const std::scoped_lock lock(m_mutex);
        return m_lines;
    }

  private:
    class Collector final : public log4cplus::Appender {
      public:
        explicit Collector(LogCapture& owner) : m_owner(owner) {}
        ~Collector() override { destructorImpl(); }
        void close() override {}

      protected:
        void append(const log4cplus::spi::InternalLoggingEvent& event) override {
            const std::scoped_lock lock(m_owner.m_mutex);
            m_owner.m_lines.push_back({log4cplus::getLogLevelManager().toString(event.getLogLevel()),
                                       event.getMessage(), event.getLoggerName()});
        }

      private:
        LogCapture& m_owner;
    };

    static log4cplus::Logger logger() { return log4cplus::Logger::getInstance("tessera"); }

    static std::string withoutPlace(const LogLine& line) {
        const std::string begin = "Check failed: ";
        const std::size_t place = line.text.rfind(", at file: core/");
        if (line.level != "ERROR" || place == std::string::npos) return line.level + " " + line.text;
        // A signature follows the last " in " whose rest still has the function's parenthesis.
        const std::string text = line.text.substr(0, place);
        std::size_t in = text.find(" in ");
        for (std::size_t next = in; next != std::string::npos; next = text.find(" in ", next + 1))
            if (text.find('(', next) != std::string::npos) in = next;
        const std::string what = text.substr(0, in);
        return what.starts_with(begin) ? "ERROR check " + what.substr(begin.size()) : "ERROR alert " + what;
    }

    mutable std::mutex m_mutex;
    std::vector<LogLine> m_lines;
    log4cplus::SharedAppenderPtr m_appender;
};

}  // namespace tessera_test
