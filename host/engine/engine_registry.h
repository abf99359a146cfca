// The engines of the program, and opening a result by its address.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/engine/result.h"

namespace tessera_host {

// How a result is opened.
struct OpenOptions {
    std::string engine;                         // its name; "" to go by the address
    std::chrono::milliseconds lockWait{5'000};  // for a lock of another program
};

// What an engine registers. Its functions are called by any thread, several at once.
struct Engine {
    std::string name;                  // as OpenOptions and messages name it
    std::string description;           // "SQLite files", completes "this program reads ..."
    std::vector<std::string> schemes;  // of addresses "SCHEME://...", in small letters
    std::vector<std::string> endings;  // of paths, with the dot, in small letters
    // Whether the file's first bytes are this engine's. An empty function when its files have none. Called
    // for addresses without a scheme, also when the file does not exist. Must not disturb another engine that
    // has the file open.
    std::function<bool(const std::string& path)> recognizes;
    // Opens an address that was chosen for this engine. The result is never null. The error is a clause for
    // people that does not repeat the address; its kind counts only when it is cancelled.
    std::function<Expected<std::shared_ptr<IResult>>(const std::string& address, const OpenOptions& options,
                                                     const CancelToken& cancel)>
        open;
    // What the engine's SQL rejects without a database, as clauses for people: a filter that cannot stand in
    // any statement is an error, and a selection has a list of problems. Neither function is empty.
    std::function<Expected<void>(const NamedFilter&)> checkFilterText;
    std::function<std::vector<std::string>(const Selection&)> checkText;
};

// Filled once, then only read, by any thread.
class EngineRegistry {
  public:
    // The engines that are part of the program.
    [[nodiscard]] static const EngineRegistry& builtIn();

    // The order counts: of two engines that take an address, the earlier one opens it.
    void add(Engine engine) { m_engines.push_back(std::move(engine)); }
    [[nodiscard]] const std::vector<Engine>& engines() const noexcept { return m_engines; }

    // Opens a result read-only. The engine is the one that the options name; otherwise the address's scheme,
    // then the file's first bytes, then its ending decide; a file that no engine knows is opened by the first
    // one, whose error explains the failure. The error's kind is cannotOpen, cancelled, or usage when no
    // engine has the name.
    [[nodiscard]] Expected<std::shared_ptr<IResult>> open(const std::string& address,
                                                          const OpenOptions& options = {},
                                                          const CancelToken& cancel = {}) const;

  private:
    [[nodiscard]] Expected<const Engine*> choose(const std::string& address,
                                                 const OpenOptions& options) const;
    [[nodiscard]] std::string descriptions() const;

    std::vector<Engine> m_engines;
};

}  // namespace tessera_host
