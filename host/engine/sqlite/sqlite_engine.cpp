#include "host/engine/sqlite/sqlite_engine.h"

#include "host/engine/sqlite/database_file.h"
#include "host/engine/sqlite/selection_check.h"
#include "host/engine/sqlite/sqlite_result.h"

namespace tessera_host {

Engine sqliteEngine() {
    Engine engine;
    engine.name = "sqlite";
    engine.description = "SQLite files";
    engine.endings = {".db", ".sqlite", ".sqlite3"};
    engine.recognizes = hasSqliteHeader;
    engine.open = [](const std::string& path, const OpenOptions& options,
                     const CancelToken& cancel) -> Expected<std::shared_ptr<IResult>> {
        auto result = SqliteResult::open(path, options.lockWait, cancel);
        if (!result) return std::move(result).error();
        return std::shared_ptr<IResult>(*std::move(result));
    };
    engine.checkFilterText = tessera_host::checkFilterText;
    engine.checkText = fragmentProblems;
    return engine;
}

}  // namespace tessera_host
