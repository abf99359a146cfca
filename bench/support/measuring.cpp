#include "bench/support/measuring.h"

#include <expat.h>
#include <fmt/format.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace tessera_bench {

void giveUp(const std::string& text) {
    fmt::print(stderr, "{}\n", text);
    std::exit(1);
}

double secondsOf(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

double allocated() {
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

double peakResident() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:")) return std::atof(line.c_str() + 6) * 1024;
    return 0;
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

double parseAlone(const std::string& text) {
    const XML_Parser parser = XML_ParserCreate(nullptr);
    std::size_t events = 0;
    XML_SetUserData(parser, &events);
    XML_SetElementHandler(
        parser, [](void* count, const char*, const char**) { ++*static_cast<std::size_t*>(count); },
        [](void* count, const char*) { ++*static_cast<std::size_t*>(count); });
    XML_SetCharacterDataHandler(parser,
                                [](void* count, const char*, int) { ++*static_cast<std::size_t*>(count); });
    const double seconds = secondsOf([&] {
        if (XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1) != XML_STATUS_OK)
            giveUp("the document is not well-formed");
    });
    XML_ParserFree(parser);
    return seconds;
}

bool Counter::deliver(std::string_view block) {
    bytes += block.size();
    return true;
}

void Complaints::post(relay2::severity_t, const std::string& text, basekit2::source_position_t) {
    giveUp(text);
}

void runApart(void* figures, std::size_t size, const std::function<void(void*)>& measure) {
    int ends[2];
    if (pipe(ends) != 0) giveUp("pipe");
    std::fflush(stdout);  // or the child prints it again
    const pid_t child = fork();
    if (child < 0) giveUp("fork");
    if (child == 0) {
        measure(figures);
        _exit(write(ends[1], figures, size) == static_cast<ssize_t>(size) ? 0 : 1);
    }
    int status = 0;
    close(ends[1]);
    const bool isWhole = read(ends[0], figures, size) == static_cast<ssize_t>(size);
    waitpid(child, &status, 0);
    close(ends[0]);
    if (!isWhole || status != 0) giveUp("the measuring process failed");
}

}  // namespace tessera_bench
