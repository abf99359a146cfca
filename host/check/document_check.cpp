#include "host/check/document_check.h"

#include "host/check/cycles.h"
#include "host/check/references.h"
#include "host/check/structure.h"
#include "host/check/vocabulary.h"
#include "host/sqlite/diagnose.h"

namespace tessera_host {

std::vector<Finding> checkDocument(const basekit2::variant_bag_t& viewpoint, const Declarations& declarations,
                                   const Filters& filters, const std::shared_ptr<Database>& database,
                                   const relay2::IProgress* progress) {
    Findings findings;
    checkVocabulary(viewpoint, findings);
    checkCycles(checkStructure(viewpoint, findings), findings);
    checkReferences(viewpoint, declarations, findings);
    checkDeclarations(declarations, findings);
    if (!database)
        checkSqlText(declarations, filters, findings);
    else
        for (const Problem& problem : diagnose(database, declarations, filters, progress))
            findings.error(problem.position, problem.text);
    return findings.sorted();
}

}  // namespace tessera_host
