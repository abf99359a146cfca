#include "cli/child_process.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <exception>
#include <new>
#include <string_view>
#include <system_error>

#include "cli/interrupt.h"
#include "host/text/text_sink.h"

namespace tessera_cli {
namespace {

using tessera_host::Error;
using tessera_host::ErrorKind;
using tessera_host::Expected;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds timeToEnd{500};
constexpr int exitOutOfMemory = 1;
constexpr int probeMicroseconds = 300'000;
// Comes before the result.
constexpr char waitsMark = '!';
constexpr int pollMilliseconds = 1000;
constexpr int maxIdlePolls = 15;
constexpr std::chrono::milliseconds leastWork{10};  // in a poll; the probes of memory take less
constexpr const char* memoryHint = "there may not be enough memory";

class Pipe {
  public:
    Pipe() : m_error(pipe2(m_ends.data(), O_CLOEXEC) == 0 ? 0 : errno) {}
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() {
        closeEnd(0);
        closeEnd(1);
    }

    [[nodiscard]] int error() const { return m_error; }
    [[nodiscard]] int end(std::size_t which) const { return m_ends.at(which); }
    void closeEnd(std::size_t which) {
        if (m_ends.at(which) >= 0) close(m_ends.at(which));
        m_ends.at(which) = -1;
    }

  private:
    std::array<int, 2> m_ends{-1, -1};
    int m_error;
};

Error notStarted(int number) {
    return {ErrorKind::cannotOpen,
            "the drawing cannot be started: " + std::generic_category().message(number)};
}

volatile std::sig_atomic_t shortages = 0;

// Some libraries repeat for ever what fails for want of memory. A signal handler may not allocate, but a new
// mapping fails when an allocation would.
void probeMemory(int) {
    constexpr std::size_t probeSize = std::size_t{256} << 10U;
    constexpr int maxShortages = 3;
    const int savedErrno = errno;
    void* probe = mmap(nullptr, probeSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    shortages = probe == MAP_FAILED ? shortages + 1 : 0;
    if (shortages == maxShortages) _exit(exitOutOfMemory);
    if (probe != MAP_FAILED) munmap(probe, probeSize);
    errno = savedErrno;
}

// Ends this process when memory is short for about a second.
void watchMemory() {
    struct sigaction action {};
    action.sa_handler = probeMemory;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGALRM, &action, nullptr);
    const itimerval every{{0, probeMicroseconds}, {0, probeMicroseconds}};
    setitimer(ITIMER_REAL, &every, nullptr);
}

// Never returns. Nothing of the parent's is flushed or destroyed here.
[[noreturn]] void runAsChild(const ChildWork& work, pid_t parent, int resultEnd) {
    becomeChild();
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(exitOutOfMemory);  // it ended before it could be watched
    watchMemory();
    try {
        tessera_host::FileSink sink(resultEnd);
        const auto willWait = [&] {
            sink.put(waitsMark);
            (void)sink.flush();  // a parent that has ended reads nothing, and ends this process
        };
        const std::string result = work(willWait);
        std::fflush(nullptr);
        _exit(sink.write(result) && sink.flush() ? 0 : exitOutOfMemory);
    } catch (const std::exception&) {
        _exit(exitOutOfMemory);
    }
}

// The child, from the parent's side.
class Child {
  public:
    Child(pid_t id, int resultEnd) : m_id(id), m_resultEnd(resultEnd) {}

    // Everything until the child closes its end. What an interruption leaves unread is lost.
    std::string readResult() {
        std::string result;
        std::array<char, 4096> block{};
        while (waitForResult()) {
            const ssize_t count = read(m_resultEnd, block.data(), block.size());
            m_mayIdle = m_mayIdle || count > 0;
            if (count > 0) result.append(block.data(), static_cast<std::size_t>(count));
            if (count == 0 || (count < 0 && errno != EINTR)) break;
        }
        if (result.starts_with(waitsMark)) result.erase(0, 1);
        return result;
    }

    // The status of waitpid().
    [[nodiscard]] int wait() const {
        int status = 0;
        while (waitpid(m_id, &status, 0) < 0)
            if (errno != EINTR) return -1;
        return status;
    }

  private:
    // False when the child was ended by force.
    bool waitForResult() {
        while (true) {
            // A negative number is not watched: an interruption is seen once.
            std::array<pollfd, 2> watched{pollfd{m_resultEnd, POLLIN, 0},
                                          pollfd{m_isEnding ? -1 : interruptDescriptor(), POLLIN, 0}};
            const int ready = poll(watched.data(), watched.size(), timeout());
            if (ready < 0 && errno != EINTR) return true;  // then the read waits
            if (ready == 0 && !m_isEnding && isStuck()) return false;
            if (isInterrupted() && !m_isEnding) {
                m_isEnding = true;
                m_deadline = Clock::now() + timeToEnd;
                kill(m_id, SIGTERM);
                continue;
            }
            if (watched[0].revents != 0) return true;
            if (m_isEnding && Clock::now() >= m_deadline) {
                kill(m_id, SIGKILL);
                return false;
            }
        }
    }

    // Counts polls, not time: a program that was stopped for an hour has done nothing in it. Ends a child
    // that is stuck.
    bool isStuck() {
        const auto now = workDone();
        m_idlePolls = now - m_workBefore < leastWork ? m_idlePolls + 1 : 0;
        m_workBefore = now;
        if (m_idlePolls < maxIdlePolls) return false;
        kill(m_id, SIGKILL);
        return true;
    }

    // The processor time that the child has used.
    [[nodiscard]] std::chrono::nanoseconds workDone() const {
        clockid_t clock = 0;
        timespec time{};
        if (clock_getcpuclockid(m_id, &clock) != 0 || clock_gettime(clock, &time) != 0) return {};
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    }

    // Of the next poll, in milliseconds.
    [[nodiscard]] int timeout() const {
        if (!m_isEnding) return m_mayIdle ? -1 : pollMilliseconds;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_deadline - Clock::now());
        return left.count() > 0 ? static_cast<int>(left.count()) : 0;
    }

    pid_t m_id;
    int m_resultEnd;
    bool m_mayIdle = false;
    int m_idlePolls = 0;
    std::chrono::nanoseconds m_workBefore{};
    bool m_isEnding = false;
    Clock::time_point m_deadline;  // while it is ending
};

Expected<std::string> outcome(int status, std::string result) {
    if (isInterrupted()) return tessera_host::cancelledError();
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return result;
    const std::string how = WIFSIGNALED(status) ? fmt::format(" (signal {})", WTERMSIG(status)) : "";
    return Error{ErrorKind::cannotOpen, fmt::format("the drawing ended unexpectedly{}; {}", how, memoryHint)};
}

}  // namespace

Expected<std::string> runInChild(const ChildWork& work) {
    Pipe results;
    if (results.error() != 0) return notStarted(results.error());
    std::fflush(nullptr);  // what waits in a buffer would be written by both
    const pid_t parent = getpid();
    const pid_t id = fork();
    if (id < 0) return notStarted(errno);
    if (id == 0) runAsChild(work, parent, results.end(1));
    results.closeEnd(1);
    Child child(id, results.end(0));
    std::string result = child.readResult();
    const int status = child.wait();
    return outcome(status, std::move(result));
}

}  // namespace tessera_cli
