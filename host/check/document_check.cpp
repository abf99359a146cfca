#include "host/check/document_check.h"

#include "host/check/cycles.h"
#include "host/check/references.h"
#include "host/check/structure.h"
#include "host/check/vocabulary.h"
#include "host/engine/declaration_check.h"
#include "host/engine/token_progress.h"

namespace tessera_host {

std::optional<std::vector<Finding>> checkDocument(const basekit2::variant_bag_t& viewpoint,
                                                  const Declarations& declarations, const Filters& filters,
                                                  const std::shared_ptr<IResult>& result,
                                                  const relay2::IProgress* progress) {
    Findings findings;
    Watch watch(progress);
    checkVocabulary(viewpoint, findings, watch);
    const Structure structure = checkStructure(viewpoint, findings, watch);
    checkCycles(structure.graph, findings, watch);
    checkReferences(structure.rowSets, declarations, findings, watch);
    checkDeclarations(viewpoint, declarations, findings, watch);
    if (watch.mustStopNow()) return std::nullopt;
    if (!result)
        checkSqlText(declarations, filters, findings, watch);
    else
        for (const Problem& problem : checkAgainstResult(*result, declarations, filters, tokenOf(progress)))
            findings.error(problem.position, problem.text);
    if (watch.mustStopNow()) return std::nullopt;
    return findings.sorted();
}

}  // namespace tessera_host
