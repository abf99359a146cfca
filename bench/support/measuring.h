// Shared by the benchmarks: clocks, memory, and runs in a process of their own.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <type_traits>

#include "host/text/text_sink.h"
#include "platform/relay2/messenger.h"

namespace tessera_bench {

[[noreturn]] void giveUp(const std::string& text);

double secondsOf(const std::function<void()>& work);

// Bytes that the program has allocated and not freed.
double allocated();

// Peak memory of the process so far, in bytes.
double peakResident();

std::string contentOf(const std::string& path);

// Seconds that the XML library alone takes to parse the text.
double parseAlone(const std::string& text);

// Counts the bytes written.
class Counter final : public tessera_host::TextSink {
  public:
    std::size_t bytes = 0;

  protected:
    bool deliver(std::string_view block) override;
};

// Stops the benchmark at any message.
class Complaints final : public relay2::IMessenger {
  public:
    void post(relay2::severity_t severity, const std::string& text,
              basekit2::source_position_t position) override;
};

// Runs `measure`, which fills `size` bytes, in a child process. That starts with unused memory.
void runApart(void* figures, std::size_t size, const std::function<void(void*)>& measure);

template <class Figures>
Figures measureApart(const std::function<Figures()>& measure) {
    static_assert(std::is_trivially_copyable_v<Figures>);
    Figures figures{};
    runApart(&figures, sizeof figures, [&](void* out) { *static_cast<Figures*>(out) = measure(); });
    return figures;
}

}  // namespace tessera_bench
