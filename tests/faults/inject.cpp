// Preloaded into a program, makes the n-th call of a kind fail.
//
//   FAULT_COUNTS  a file that holds an array of Counts: how many calls there were, in all processes together
//   FAULT_KIND    the name of the kind that fails: "allocation", "open", ...
//   FAULT_AT      the number of the call that fails, from 1
//   FAULT_MODE    the errno as a number; or "short" (half of a read or write), "abort", "hang"
//   FAULT_LASTS   set: all later calls of the kind fail too
//   FAULT_TRACE   set: prints the calls that lead to the one that fails
//
// Only calls from main() on count. Writes to standard error never fail, because failures are reported there.
// At its end the process that was started first writes how many blocks of memory it has not given back.
//
// The names and parameters are those of the C library, and some functions exist only as macros here.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name, bugprone-reserved-identifier, bugprone-macro-parentheses)
#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* old, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);
}

namespace {

enum Kind : std::uint8_t {
    allocation,
    opening,
    reading,
    writing,
    syncing,
    naming,
    status,
    waiting,
    making,
    kinds
};
constexpr std::array<const char*, kinds> names{"allocation", "open", "read", "write", "sync",
                                               "name",       "stat", "poll", "make"};

struct Counts {
    std::array<std::atomic<std::uint64_t>, kinds> calls;
    std::atomic<std::uint64_t> hits;  // calls that failed
    std::atomic<std::int64_t>
        blocks;  // of memory, taken and not given back since main(), when the program ended
};

constexpr int modeShort = -1;
constexpr int modeAbort = -2;
constexpr int modeHang = -3;

Counts* counts = nullptr;
int failingKind = -1;
std::uint64_t failingCall = 0;
int mode = 0;
bool lasts = false;
bool isTraced = false;
std::atomic<bool> isActive = false;
std::atomic<std::int64_t> liveBlocks = 0;
pid_t firstProcess = 0;

template <class Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

void readMode() {
    const char* text = std::getenv("FAULT_MODE");
    if (text == nullptr) return;
    if (std::strcmp(text, "short") == 0)
        mode = modeShort;
    else if (std::strcmp(text, "abort") == 0)
        mode = modeAbort;
    else if (std::strcmp(text, "hang") == 0)
        mode = modeHang;
    else
        mode = static_cast<int>(std::strtol(text, nullptr, 10));
}

__attribute__((constructor)) void readSettings() {
    if (const char* file = std::getenv("FAULT_COUNTS")) {
        const int descriptor = next<int (*)(const char*, int, ...)>("open")(file, O_RDWR | O_CLOEXEC);
        void* memory = mmap(nullptr, sizeof(Counts), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
        close(descriptor);
        if (memory == MAP_FAILED) std::abort();
        counts = static_cast<Counts*>(memory);
    }
    if (const char* kind = std::getenv("FAULT_KIND"))
        for (int i = 0; i < kinds; ++i)
            if (std::strcmp(kind, names.at(i)) == 0) failingKind = i;
    if (const char* at = std::getenv("FAULT_AT")) failingCall = std::strtoull(at, nullptr, 10);
    firstProcess = getpid();
    lasts = std::getenv("FAULT_LASTS") != nullptr;
    isTraced = std::getenv("FAULT_TRACE") != nullptr;
    readMode();
    std::array<void*, 1> frame{};
    (void)backtrace(frame.data(), 1);  // loads what it needs while nothing fails
}

void trace() {
    isActive = false;
    std::array<void*, 64> frames{};
    const int count = backtrace(frames.data(), frames.size());
    backtrace_symbols_fd(frames.data(), count, STDERR_FILENO);
    isActive = true;
}

// Counts a call; returns whether it fails. errno is set then, unless the mode is short.
bool fails(Kind kind) {
    if (!isActive || counts == nullptr) return false;
    const std::uint64_t call = ++counts->calls.at(kind);
    if (kind != failingKind || (lasts ? call < failingCall : call != failingCall)) return false;
    ++counts->hits;
    if (isTraced) trace();
    if (mode == modeAbort) std::abort();
    while (mode == modeHang)
        pause();
    if (mode > 0) errno = mode;
    return true;
}

void* counted(void* memory) {
    if (memory != nullptr && isActive) ++liveBlocks;
    return memory;
}

std::size_t half(std::size_t size) {
    return size > 1 ? size / 2 : size;
}

}  // namespace

#define EXPORT extern "C" __attribute__((visibility("default")))
// A function of the C library that does what it always does unless it is to fail.
#define FAILING(kind, result, name, parameters, arguments)                     \
    EXPORT result name parameters {                                            \
        static const auto real = next<result(*) parameters>(#name);            \
        return fails(kind) && mode != modeShort ? result(-1) : real arguments; \
    }

EXPORT int __libc_start_main(int (*main)(int, char**, char**), int argc, char** argv, void (*init)(),
                             void (*fini)(), void (*ended)(), void* stack) {
    static int (*realMain)(int, char**, char**);
    realMain = main;
    const auto counted = [](int count, char** values, char** environment) {
        isActive = true;
        return realMain(count, values, environment);
    };
    using Start =
        int (*)(int (*)(int, char**, char**), int, char**, void (*)(), void (*)(), void (*)(), void*);
    return next<Start>("__libc_start_main")(counted, argc, argv, init, fini, ended, stack);
}

EXPORT void* malloc(std::size_t size) {
    return fails(allocation) ? nullptr : counted(__libc_malloc(size));
}
EXPORT void* calloc(std::size_t count, std::size_t size) {
    return fails(allocation) ? nullptr : counted(__libc_calloc(count, size));
}
EXPORT void* realloc(void* old, std::size_t size) {
    if (fails(allocation)) return nullptr;
    void* memory = __libc_realloc(old, size);
    if (isActive)
        liveBlocks += int{memory != nullptr} - int{old != nullptr && (memory != nullptr || size == 0)};
    return memory;
}
EXPORT void free(void* memory) {
    if (memory != nullptr && isActive) --liveBlocks;
    __libc_free(memory);
}
EXPORT void* memalign(std::size_t alignment, std::size_t size) {
    return fails(allocation) ? nullptr : counted(__libc_memalign(alignment, size));
}
EXPORT void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return fails(allocation) ? nullptr : counted(__libc_memalign(alignment, size));
}
EXPORT int posix_memalign(void** result, std::size_t alignment, std::size_t size) {
    void* memory = fails(allocation) ? nullptr : counted(__libc_memalign(alignment, size));
    if (memory == nullptr) return ENOMEM;
    *result = memory;
    return 0;
}
#define FAILING_MAPPING(name, offset)                                                               \
    EXPORT void* name(void* place, std::size_t size, int access, int flags, int file, offset at) {  \
        static const auto real = next<void* (*)(void*, std::size_t, int, int, int, offset)>(#name); \
        return fails(allocation) ? MAP_FAILED : real(place, size, access, flags, file, at);         \
    }
FAILING_MAPPING(mmap, off_t)
FAILING_MAPPING(mmap64, off64_t)

// The mode of a new file is an argument that only some calls have.
#define FAILING_OPEN(name, parameters, arguments)                         \
    EXPORT int name parameters {                                          \
        static const auto real = next<int(*) parameters>(#name);          \
        std::va_list list;                                                \
        va_start(list, flags);                                            \
        const mode_t access = va_arg(list, mode_t);                       \
        va_end(list);                                                     \
        return fails(opening) && mode != modeShort ? -1 : real arguments; \
    }
FAILING_OPEN(open, (const char* path, int flags, ...), (path, flags, access))
FAILING_OPEN(open64, (const char* path, int flags, ...), (path, flags, access))
FAILING_OPEN(openat, (int folder, const char* path, int flags, ...), (folder, path, flags, access))
FAILING_OPEN(openat64, (int folder, const char* path, int flags, ...), (folder, path, flags, access))
FAILING(opening, int, mkostemp, (char* name, int flags), (name, flags))
FAILING(opening, int, mkostemp64, (char* name, int flags), (name, flags))

#define FAILING_TRANSFER(kind, name, parameters, arguments, condition) \
    EXPORT ssize_t name parameters {                                   \
        static const auto real = next<ssize_t(*) parameters>(#name);   \
        if ((condition) && fails(kind)) {                              \
            if (mode != modeShort) return -1;                          \
            size = half(size);                                         \
        }                                                              \
        return real arguments;                                         \
    }
FAILING_TRANSFER(reading, read, (int file, void* data, std::size_t size), (file, data, size), true)
FAILING_TRANSFER(reading, pread, (int file, void* data, std::size_t size, off_t at), (file, data, size, at),
                 true)
FAILING_TRANSFER(reading, pread64, (int file, void* data, std::size_t size, off64_t at),
                 (file, data, size, at), true)
FAILING_TRANSFER(writing, write, (int file, const void* data, std::size_t size), (file, data, size),
                 file != STDERR_FILENO)
FAILING_TRANSFER(writing, pwrite, (int file, const void* data, std::size_t size, off_t at),
                 (file, data, size, at), true)
FAILING_TRANSFER(writing, pwrite64, (int file, const void* data, std::size_t size, off64_t at),
                 (file, data, size, at), true)

// What the checked forms of the C library call.
FAILING(opening, int, __open_2, (const char* path, int flags), (path, flags))
FAILING(opening, int, __open64_2, (const char* path, int flags), (path, flags))
FAILING_TRANSFER(reading, __read_chk, (int file, void* data, std::size_t size, std::size_t space),
                 (file, data, size, space), true)
FAILING(waiting, int, __poll_chk, (pollfd * files, nfds_t count, int timeout, std::size_t space),
        (files, count, timeout, space))

// The program ends without the destructors of its libraries.
EXPORT void _Exit(int exitStatus) {
    if (counts != nullptr && getpid() == firstProcess) counts->blocks = liveBlocks.load();
    _exit(exitStatus);
}

FAILING(syncing, int, fsync, (int file), (file))
FAILING(syncing, int, fdatasync, (int file), (file))
FAILING(naming, int, rename, (const char* from, const char* to), (from, to))
FAILING(naming, int, linkat, (int from, const char* name, int to, const char* newName, int flags),
        (from, name, to, newName, flags))
FAILING(status, int, stat, (const char* path, struct stat* result), (path, result))
FAILING(status, int, stat64, (const char* path, struct stat64* result), (path, result))
FAILING(status, int, lstat, (const char* path, struct stat* result), (path, result))
FAILING(status, int, lstat64, (const char* path, struct stat64* result), (path, result))
FAILING(status, int, fstat, (int file, struct stat* result), (file, result))
FAILING(status, int, fstat64, (int file, struct stat64* result), (file, result))
FAILING(waiting, int, poll, (pollfd * files, nfds_t count, int timeout), (files, count, timeout))
FAILING(making, int, pipe2, (int* ends, int flags), (ends, flags))
FAILING(making, int, dup2, (int file, int copy), (file, copy))
FAILING(making, pid_t, fork, (), ())
// NOLINTEND(readability-inconsistent-declaration-parameter-name, bugprone-reserved-identifier, bugprone-macro-parentheses)
