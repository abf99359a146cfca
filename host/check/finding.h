// What a check of a document finds.
#pragma once

#include <string>
#include <vector>

#include "platform/basekit2/variant_bag.h"
#include "platform/relay2/messenger.h"

namespace tessera_host {

struct Finding {
    basekit2::source_position_t position;  // line 0: about the document as a whole
    relay2::severity_t severity;
    std::string text;
};

// Collects findings in any order.
class Findings {
  public:
    void error(basekit2::source_position_t position, std::string text) {
        m_findings.push_back({position, relay2::severity_t::error, std::move(text)});
    }
    void warning(basekit2::source_position_t position, std::string text) {
        m_findings.push_back({position, relay2::severity_t::warning, std::move(text)});
    }

    // All of them in the document's order; findings of one place stay in the order in which they came.
    [[nodiscard]] std::vector<Finding> sorted() const;

  private:
    std::vector<Finding> m_findings;
};

}  // namespace tessera_host
