#include "host/document/problem.h"

#include <algorithm>

namespace tessera_host {

std::vector<Problem> ProblemList::sorted() const {
    std::vector<Problem> problems = m_problems;
    std::stable_sort(problems.begin(), problems.end(), [](const Problem& a, const Problem& b) {
        return std::pair(a.position.line, a.position.column) < std::pair(b.position.line, b.position.column);
    });
    return problems;
}

void postAll(const std::vector<Problem>& problems, relay2::IMessenger& messenger) {
    for (const auto& [position, text, severity] : problems)
        messenger.post(severity, text, position);
}

}  // namespace tessera_host
