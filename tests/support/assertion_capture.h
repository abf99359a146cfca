// Captures raised assertions for tests.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "platform/RTBASE_2_18/assertion.h"

namespace tessera_test {

struct Assertion {
    std::string message;
    std::string function;
    std::string file;
    int line;
};

// While it exists, assertions are collected and do not end the program. One at a time.
class AssertionCapture {
  public:
    AssertionCapture() {
        state().assertions.clear();
        m_previous = RTBASE_2_18::set_assertion_handler(collect);
    }
    ~AssertionCapture() { RTBASE_2_18::set_assertion_handler(m_previous); }
    AssertionCapture(const AssertionCapture&) = delete;
    AssertionCapture& operator=(const AssertionCapture&) = delete;

    std::vector<Assertion> all() const {
        const std::scoped_lock lock(state().mutex);
        return state().assertions;
    }
    std::vector<std::string> messages() const {
        std::vector<std::string> out;
        for (const Assertion& assertion : all())
            out.push_back(assertion.message);
        return out;
    }

  private:
    struct State {
        std::mutex mutex;
        std::vector<Assertion> assertions;
    };
    static State& state() {
        static State instance;
        return instance;
    }
    static void collect(const char* message, const char* function, const char* file, int line) {
        const std::scoped_lock lock(state().mutex);
        state().assertions.push_back({message, function, file, line});
    }

    RTBASE_2_18::assertion_handler_t m_previous;
};

}  // namespace tessera_test
