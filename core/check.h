// How core reports broken expectations.
//
// A check names a condition; when it does not hold, one line
//     Check failed: CONDITION in SIGNATURE, at file: PATH:LINE
// goes to the component logger at ERROR level, the host's assertion is raised if the environment variable
// tessera_ERROR_HANDLING contains "assert", and the function returns. An alert is the same with a message
// instead of a condition; its bare message is logged once more at INFO level, and the function continues.
//
// Every source file says once, at namespace scope, which source unit it belongs to:
// TESSERA_SOURCE_UNIT("core/...").
#pragma once

#include <log4cplus/logger.h>

#include <mutex>
#include <string>

#include "platform/basekit2/error_code.h"

namespace tessera_1::check {

// A source file as reports name it: the path of its unit, without a file ending. Made during static
// initialisation and never destroyed before the process ends.
class SourceUnit {
  public:
    explicit SourceUnit(const char* path);

    // NUL-terminated, as given: a literal.
    [[nodiscard]] const char* path() const noexcept { return m_path; }
    [[nodiscard]] const log4cplus::Logger& logger() const noexcept { return m_logger; }
    // Whether failed checks raise the host's assertion. Read from the environment on first use, then kept.
    [[nodiscard]] bool assertionsOn() const;

  private:
    const char* m_path;
    log4cplus::Logger m_logger;
    mutable std::once_flag m_switchRead;
    mutable bool m_assertionsOn = false;
};

// Where in a unit something was reported. Made by the macros below; lives for one call.
struct Place {
    const SourceUnit& unit;
    const char* signature;
    int line;
};

// Reports that `condition` did not hold. `again` is the condition's second evaluation, made by the caller
// while it calls.
void failed(const Place& place, const char* condition, bool again);

// The same for a check whose failure is a raised error; `expression` is that error's source text. Returns the
// raised code.
[[nodiscard]] basekit2::error_code_t failedWith(const Place& place, const char* condition, bool again,
                                                const char* expression, const basekit2::error_t& error);

// Reports `message` (UTF-8, may quote the document); the caller continues. Any thread.
void alert(const Place& place, const std::string& message);

}  // namespace tessera_1::check

#define TESSERA_SOURCE_UNIT(path)                                                                      \
    namespace {                                                                                        \
    const ::tessera_1::check::SourceUnit sourceUnit{path}; /* NOLINT(cert-err58-cpp): logger set-up */ \
    }                                                                                                  \
    static_assert(true)

// The signature of the function that this stands in.
#define TESSERA_SIGNATURE static_cast<const char*>(__PRETTY_FUNCTION__)

// This place, as one of the operation with that signature.
#define TESSERA_HERE_IN(signature) (::tessera_1::check::Place{sourceUnit, signature, __LINE__})

#define TESSERA_HERE TESSERA_HERE_IN(TESSERA_SIGNATURE)

// Returns from the function, with the value that follows the condition if there is one. A condition that
// fails is evaluated once more for its report.
#define TESSERA_CHECK(condition, ...) TESSERA_CHECK_IN(TESSERA_SIGNATURE, condition, __VA_ARGS__)

// The same in a helper, whose checks are reported as those of the operation that it serves.
#define TESSERA_CHECK_IN(signature, condition, ...)                            \
    do {                                                                       \
        if (!(condition)) [[unlikely]] {                                       \
            ::tessera_1::check::failed(TESSERA_HERE_IN(signature), #condition, \
                                       static_cast<bool>(condition));          \
            return __VA_ARGS__;                                                \
        }                                                                      \
    } while (false)

// Returns the error, raised at this place.
#define TESSERA_CHECK_OR_RAISE(condition, error)                                                          \
    do {                                                                                                  \
        if (!(condition)) [[unlikely]]                                                                    \
            return ::tessera_1::check::failedWith(TESSERA_HERE, #condition, static_cast<bool>(condition), \
                                                  #error, error);                                         \
    } while (false)

#define TESSERA_ALERT(message) TESSERA_ALERT_IN(TESSERA_SIGNATURE, message)
#define TESSERA_ALERT_IN(signature, message) ::tessera_1::check::alert(TESSERA_HERE_IN(signature), message)

// An error code raised at this place; nothing is logged.
#define TESSERA_RAISE(error) TESSERA_RAISE_IN(TESSERA_SIGNATURE, error)
#define TESSERA_RAISE_IN(signature, error) \
    ::basekit2::error_code_t::raise(error, signature, sourceUnit.path(), __LINE__)
