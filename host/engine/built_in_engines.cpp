// The one list of engines. An engine is added by a line here, its header and its folder.
#include "host/engine/engine_registry.h"
#include "host/engine/sqlite/sqlite_engine.h"

namespace tessera_host {

const EngineRegistry& EngineRegistry::builtIn() {
    static const EngineRegistry registry = [] {
        EngineRegistry engines;
        engines.add(sqliteEngine());
        return engines;
    }();
    return registry;
}

}  // namespace tessera_host
