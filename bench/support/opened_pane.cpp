#include "bench/support/opened_pane.h"

#include "bench/support/measuring.h"
#include "host/engine/engine_registry.h"

namespace tessera_bench {

std::unique_ptr<tessera_host::Pane> openPane(const std::string& document, const std::string& database,
                                             const tessera_host::PaneOptions& options) {
    const auto viewpoint = tessera_host::Viewpoint::readFile(document, {});
    if (!viewpoint) giveUp(describe(viewpoint.error(), document));
    const auto result = tessera_host::EngineRegistry::builtIn().open(database);
    if (!result) giveUp(describe(result.error(), database));
    return std::make_unique<tessera_host::Pane>(*viewpoint, *result, (*viewpoint)->filters(), options);
}

}  // namespace tessera_bench
