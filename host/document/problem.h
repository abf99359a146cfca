// Something wrong with a document, or worth knowing about it, at its place. A list of problems is the result
// of a check. What keeps a function from doing its work is an Error (host/error.h).
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/basekit2/variant_bag.h"
#include "platform/relay2/messenger.h"

namespace tessera_host {

// One finding. Warnings leave the document usable as it is; errors mean that something will be missing.
struct Problem {
    basekit2::source_position_t position;  // line 0: about the document as a whole
    std::string text;                      // one sentence without a full stop, for people
    relay2::severity_t severity = relay2::severity_t::error;

    friend bool operator==(const Problem&, const Problem&) = default;
};

// Collects the problems of several checks, in any order. One thread at a time.
class ProblemList {
  public:
    // Each adds one problem; none is thrown away, also when it was found twice.
    void error(basekit2::source_position_t position, std::string text) {
        add(position, std::move(text), relay2::severity_t::error);
    }
    void warning(basekit2::source_position_t position, std::string text) {
        add(position, std::move(text), relay2::severity_t::warning);
    }
    void add(basekit2::source_position_t position, std::string text, relay2::severity_t severity) {
        m_problems.push_back({position, std::move(text), severity});
    }

    // A copy of all of them in the order of the document, those without a position first. Problems at one
    // place stay in the order in which they were added.
    [[nodiscard]] std::vector<Problem> sorted() const;

  private:
    std::vector<Problem> m_problems;
};

// Posts the problems to the messenger, in this order, on the calling thread.
void postAll(const std::vector<Problem>& problems, relay2::IMessenger& messenger);

}  // namespace tessera_host
