#include "cli/interrupt.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

#include "cli/options.h"

namespace tessera_cli {
namespace {

// A few bytes, made before main: without them nothing could run.
tessera_support::CancelSource interruption;  // NOLINT(cert-err58-cpp)

int wakePipe[2] = {-1, -1};

constexpr std::array interruptSignals{SIGINT, SIGTERM, SIGHUP};

// The next one of these signals ends the program. SIGHUP stays ignored where it is.
void endWithNextSignal() {
    for (const int number : interruptSignals) {
        struct sigaction now {};
        if (sigaction(number, nullptr, &now) != 0 || now.sa_handler == SIG_IGN) continue;
        now = {};
        now.sa_handler = SIG_DFL;
        sigaction(number, &now, nullptr);
    }
}

void interrupt(int) {
    const int savedErrno = errno;
    endWithNextSignal();
    interruption.cancel();
    // Nothing ever reads from it, so one byte is enough and a full pipe does no harm.
    [[maybe_unused]] const ssize_t written = write(wakePipe[1], "!", 1);
    errno = savedErrno;
}

}  // namespace

void installInterruptHandler() {
    if (pipe2(wakePipe, O_CLOEXEC | O_NONBLOCK) != 0)
        wakePipe[0] = wakePipe[1] = -1;  // waiting then ends a line later
    struct sigaction action {};
    action.sa_handler = interrupt;
    sigemptyset(&action.sa_mask);
    // One handler at a time, so that the second signal finds the default action.
    for (const int number : interruptSignals)
        sigaddset(&action.sa_mask, number);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    struct sigaction hangUp {};
    sigaction(SIGHUP, nullptr, &hangUp);
    if (hangUp.sa_handler != SIG_IGN) sigaction(SIGHUP, &action, nullptr);  // "nohup" is to hold
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

tessera_support::CancelToken interruptToken() noexcept {
    return interruption.token();
}

bool isInterrupted() noexcept {
    return interruption.isCancelled();
}

int orInterrupted(int status) noexcept {
    return isInterrupted() ? exitInterrupted : status;
}

void becomeChild() noexcept {
    // What remains is the end that the parent wakes; a signal to the child alone must not wake the parent.
    if (wakePipe[1] >= 0) close(wakePipe[1]);
    wakePipe[1] = -1;
}

int interruptDescriptor() noexcept {
    return wakePipe[0];
}

}  // namespace tessera_cli
