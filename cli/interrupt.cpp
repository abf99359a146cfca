#include "cli/interrupt.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "cli/options.h"

namespace tessera_cli {
namespace {

// A few bytes, made before main: without them nothing could run.
tessera_support::CancelSource interruption;  // NOLINT(cert-err58-cpp)

int wakePipe[2] = {-1, -1};

void interrupt(int) {
    const int savedErrno = errno;
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
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigemptyset(&action.sa_mask);
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

int interruptDescriptor() noexcept {
    return wakePipe[0];
}

}  // namespace tessera_cli
