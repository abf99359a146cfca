// Feeds SQL of a document to the guard and to SQLite: an expression, a "where" and a filter, divided by lines that
// hold "%%" alone. Requires that nothing but the database is ever opened, that nothing is deleted, and what
// host/engine/sqlite/sql_guard.h promises about a text that it accepts.
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "fuzz/support.h"
#include "host/engine/sqlite/sql_guard.h"

namespace {

using tessera_fuzz::require;
using tessera_host::Question;

// The usual file system, which ends the process once anything but reading the database is tried.
class WatchedFiles {
  public:
    // Becomes SQLite's own, and allows everything until allowOnly().
    static bool install() {
        sqlite3_vfs& watched = files();
        watched = *usual();
        watched.zName = "watched";
        watched.xOpen = open;
        watched.xDelete = [](sqlite3_vfs*, const char* name, int sync) -> int {
            require(path().empty(), "no file is deleted");
            return usual()->xDelete(usual(), name, sync);
        };
        watched.xDlOpen = [](sqlite3_vfs*, const char*) -> void* {
            require(false, "no library is loaded");
            return nullptr;
        };
        require(sqlite3_vfs_register(&watched, 1) == SQLITE_OK, "the file system is registered");
        return true;
    }
    // From now on only `database` may be read, and what SQLite keeps beside it.
    static bool allowOnly(std::string database) {
        path() = std::move(database);
        return true;
    }

  private:
    static std::string& path() {
        static std::string database;
        return database;
    }
    static sqlite3_vfs*& usual() {
        static sqlite3_vfs* found = sqlite3_vfs_find(nullptr);
        return found;
    }
    static sqlite3_vfs& files() {
        static sqlite3_vfs watched;
        return watched;
    }
    static int open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
        // Without a name it is a file for sorting, which is gone when it is closed.
        if (name != nullptr && !path().empty()) {
            require(std::string_view(name).starts_with(path()), "only the database is opened");
            require((flags & (SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE)) == 0, "it is opened to be read");
        }
        return usual()->xOpen(usual(), name, file, flags, outFlags);
    }
};

// A connection without the host's guard around it, in which statements are prepared and none does anything.
class BareConnection {
  public:
    BareConnection() {
        require(sqlite3_open(":memory:", &m_database) == SQLITE_OK, "there is a database in memory");
        require(sqlite3_exec(m_database, tessera_fuzz::smallSchema, nullptr, nullptr, nullptr) == SQLITE_OK,
                "it has the tables");
        sqlite3_set_authorizer(m_database, noteRecursion, this);
    }
    ~BareConnection() { sqlite3_close(m_database); }
    BareConnection(const BareConnection&) = delete;
    BareConnection& operator=(const BareConnection&) = delete;

    // What may be said about a text that scanSql() accepts.
    void checkEnclosed(const std::string& sql, bool hasWith) {
        const std::string open = "SELECT 1 FROM t WHERE 0 AND (\n" + sql + "\n";
        require(!prepares(open), "an accepted text does not close the parenthesis around it");
        m_isRecursive = false;
        (void)prepares(open + ")");
        require(hasWith || !m_isRecursive, "a text without WITH does not recurse");
    }

  private:
    // Whether the text is one statement. Such a statement has no rows: "0 AND" holds all of it.
    bool prepares(const std::string& sql) {
        sqlite3_stmt* statement = nullptr;
        const char* tail = nullptr;
        const int code =
            sqlite3_prepare_v2(m_database, sql.c_str(), static_cast<int>(sql.size() + 1), &statement, &tail);
        if (code == SQLITE_OK) {
            require(tail == sql.c_str() + sql.size(), "an accepted text is part of one statement");
            require(sqlite3_step(statement) != SQLITE_ROW, "an accepted text stays inside its condition");
        }
        sqlite3_finalize(statement);
        return code == SQLITE_OK;
    }

    static int noteRecursion(void* self, int action, const char*, const char*, const char*, const char*) {
        if (action == SQLITE_RECURSIVE) static_cast<BareConnection*>(self)->m_isRecursive = true;
        return SQLITE_OK;
    }

    sqlite3* m_database = nullptr;
    bool m_isRecursive = false;
};

// The next piece of the text, which becomes shorter by it.
std::string takePiece(std::string_view& text) {
    constexpr std::string_view divider = "\n%%\n";
    const std::size_t end = std::min(text.find(divider), text.size());
    std::string piece(text.substr(0, end));
    text.remove_prefix(std::min(end + divider.size(), text.size()));
    return piece;
}

// Kept from one input to the next, because most of what is tried ends early and beginning a snapshot takes longer. A
// statement that reaches a limit can end one.
tessera_host::ISnapshot& openSnapshot(tessera_host::IResult& result) {
    static std::unique_ptr<tessera_host::ISnapshot> snapshot;
    if (snapshot != nullptr && snapshot->state()) return *snapshot;
    snapshot.reset();
    auto begun = result.begin({});
    require(begun.hasValue(), "a snapshot begins");
    snapshot = *std::move(begun);
    return *snapshot;
}

// Such a problem says nothing about the text: the limits come sooner when the machine is busy.
bool isLimit(const std::string& problem) {
    return problem.find("it was stopped") != std::string::npos;
}

void runSelection(tessera_host::ISnapshot& snapshot, const tessera_host::Selection& selection) {
    tessera_host::RunOptions options;
    options.limits = tessera_fuzz::smallLimits().queryLimits;
    for (const tessera_host::NamedFilter& filter : selection.filters)
        if (!snapshot.checkFilter(filter)) return;
    const std::vector<std::string> problems = snapshot.check(selection, options);
    const tessera_host::KeyValues word(selection.keys.size(), "x");
    const tessera_host::KeyValues number(selection.keys.size(), "1");
    const std::array<Question, 2> questions{Question{&selection, &word}, Question{&selection, &number}};
    const bool isRejected = !problems.empty() && std::none_of(problems.begin(), problems.end(), isLimit);
    for (const Question& question : questions)
        require(!snapshot.answer(question, options).hasValue() || !isRejected,
                "what the check rejects has no value");
    (void)snapshot.answerTogether(questions, 1'000'000, options);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool isInstalled = WatchedFiles::install();
    static const tessera_fuzz::SmallResult result;
    static BareConnection bare;
    static const bool isWatched = isInstalled && WatchedFiles::allowOnly(result.path());
    require(isWatched, "the file system is watched");

    std::string_view text = tessera_fuzz::textOf(data, size);
    tessera_host::QueryDeclaration query;
    query.from = "t";
    query.expression = takePiece(text);
    query.where = takePiece(text);
    if (size % 2 == 0) query.keys = {"b"};
    tessera_host::FilterList filters;
    if (!text.empty()) filters.push_back({"global", std::string(text)});
    for (const std::string* sql : std::array<const std::string*, 2>{&query.expression, &query.where})
        if (const auto fragment = tessera_host::scanSql(*sql)) bare.checkEnclosed(*sql, fragment->hasWith);
    runSelection(openSnapshot(*result.get()), {query, std::move(filters)});
    return 0;
}
