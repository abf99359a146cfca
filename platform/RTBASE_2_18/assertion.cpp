#include "platform/RTBASE_2_18/assertion.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace RTBASE_2_18 {
namespace {

void print_and_abort(const char* message, const char* function, const char* file, int line) {
    std::fprintf(stderr, "%s:%d: %s: assertion failed: %s\n", file, line, function, message);
    std::abort();
}

std::atomic<assertion_handler_t> installed{print_and_abort};

}  // namespace

assertion_handler_t set_assertion_handler(assertion_handler_t handler) noexcept {
    return installed.exchange(handler ? handler : print_and_abort);
}

void assertion_failed(const char* message, const char* function, const char* file, int line) {
    installed.load()(message, function, file, line);
}

}  // namespace RTBASE_2_18
