// Everything wrong with a document, in one run.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "host/check/finding.h"
#include "host/document/declarations.h"
#include "host/engine/result.h"
#include "platform/relay2/progress.h"

namespace tessera_host {

// Looks a document over: vocabulary, ids, links, display entries, references, declarations, cycles. With a
// result, also tables, columns and expressions that it rejects, under the given filters; no query is run.
// In the document's order. `declarations` are those of `viewpoint`. None when `progress`, which may be null,
// was cancelled; it is asked all the time.
[[nodiscard]] std::optional<std::vector<Finding>> checkDocument(const basekit2::variant_bag_t& viewpoint,
                                                                const Declarations& declarations,
                                                                const Filters& filters,
                                                                const std::shared_ptr<IResult>& result,
                                                                const relay2::IProgress* progress);

}  // namespace tessera_host
