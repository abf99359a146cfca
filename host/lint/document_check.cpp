#include "host/lint/document_check.h"

#include "host/lint/cycles/cycle_finder.h"
#include "host/lint/cycles/cycle_report.h"
#include "host/lint/references.h"
#include "host/lint/structure_check.h"
#include "host/lint/vocabulary.h"

namespace tessera_host {
namespace {

void addAll(std::span<const Problem> problems, ProblemList& list) {
    for (const auto& [position, text, severity] : problems)
        list.add(position, text, severity);
}

}  // namespace

Expected<std::vector<Problem>> checkDocument(const Viewpoint& viewpoint, std::span<const Problem> sqlProblems,
                                             const tessera_support::CancelToken& token) {
    const DocumentStructure& structure = viewpoint.structure();
    ProblemList problems;
    checkVocabulary(viewpoint.bag(), problems, token);
    checkGraph(viewpoint.bag(), structure, problems, token);
    checkDisplay(structure, problems, token);
    const CyclicLinks cyclic = findCyclicLinks(structure, token);
    if (token.isCancelled()) return cancelledError();
    addAll(reportCycles(structure, cyclic, CycleReport::check, token), problems);
    checkReferences(structure, *viewpoint.declarations(), problems, token);
    addAll(viewpoint.problems(), problems);
    checkDeclarations(viewpoint, problems, token);
    addAll(sqlProblems, problems);
    if (token.isCancelled()) return cancelledError();
    return problems.sorted();
}

}  // namespace tessera_host
