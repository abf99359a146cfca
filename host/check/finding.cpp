#include "host/check/finding.h"

#include <algorithm>
#include <utility>

namespace tessera_host {

std::vector<Finding> Findings::sorted() const {
    std::vector<Finding> findings = m_findings;
    std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
        return std::pair(a.position.line, a.position.column) < std::pair(b.position.line, b.position.column);
    });
    return findings;
}

}  // namespace tessera_host
