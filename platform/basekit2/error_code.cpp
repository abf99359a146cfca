#include "platform/basekit2/error_code.h"

#include <deque>
#include <mutex>

namespace basekit2 {
namespace {

struct raise_t {
    std::string message, function, file;
    int line = 0;

    [[nodiscard]] std::size_t size() const { return message.size() + function.size() + file.size(); }
};

// What the most recent raises said. Bounded in number and in bytes, but the newest is always kept.
class raise_log_t {
  public:
    static raise_log_t& process() {
        static raise_log_t log;
        return log;
    }

    // Returns the running number of the raise, starting at 1.
    std::uint64_t add(raise_t raise) {
        const std::scoped_lock lock(m_mutex);
        m_bytes += raise.size();
        m_raises.push_back(std::move(raise));
        while (m_raises.size() > 1 && (m_raises.size() > maxRaises || m_bytes > maxBytes)) {
            m_bytes -= m_raises.front().size();
            m_raises.pop_front();
            ++m_forgotten;
        }
        return m_forgotten + m_raises.size();
    }

    raise_t find(std::uint64_t number) {
        const std::scoped_lock lock(m_mutex);
        if (number <= m_forgotten || number > m_forgotten + m_raises.size()) return {};
        return m_raises[number - m_forgotten - 1];
    }

  private:
    static constexpr std::size_t maxRaises = 65536;
    static constexpr std::size_t maxBytes = 4U << 20U;

    std::mutex m_mutex;
    std::deque<raise_t> m_raises;
    std::uint64_t m_forgotten = 0;
    std::size_t m_bytes = 0;
};

}  // namespace

error_code_t error_code_t::raise(const error_t& error, const char* function, const char* file, int line) {
    const std::uint64_t number = raise_log_t::process().add({error.message().str(), function, file, line});
    return error_code_t((number << 8U) | (error.number() + 1));
}

// The entries of the table only: a host's own entry cannot be found by its number.
const char* error_code_t::name() const noexcept {
    if (is_success()) return "success";
    if (is_false()) return "false";
    for (const error::entry_t& entry :
         {error::IsNot.Valid.Data, error::IsNot.Valid.Range, error::FailedTo, error::Cancelled})
        if (is(entry)) return entry.name;
    return "unknown";
}

std::string error_code_t::message() const {
    return succeeded() ? std::string() : raise_log_t::process().find(m_value >> 8U).message;
}

std::string error_code_t::function() const {
    return succeeded() ? std::string() : raise_log_t::process().find(m_value >> 8U).function;
}

std::string error_code_t::file() const {
    return succeeded() ? std::string() : raise_log_t::process().find(m_value >> 8U).file;
}

int error_code_t::line() const {
    return succeeded() ? 0 : raise_log_t::process().find(m_value >> 8U).line;
}

}  // namespace basekit2
