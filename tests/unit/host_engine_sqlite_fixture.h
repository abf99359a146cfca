// What the tests of the database have in common: real SQLite files in a folder of their own, and a pane's
// parts on them.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "host/engine/engine_registry.h"
#include "host/engine/query_library.h"
#include "host/engine/sqlite/sqlite_result.h"
#include "host/engine/table_tree_engine.h"
#include "host/engine/token_progress.h"
#include "platform/basekit2/object_registry.h"
#include "platform/qlibhelpers_1_x/table_tree_helper.h"

namespace tessera_host::sqlite_test {

using basekit2::error_code_t;
using basekit2::sptr_t;
using basekit2::variant_bag_t;

class TempFolder {
  public:
    TempFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "tessera-sqlite-XXXXXX").string();
        m_path = mkdtemp(name.data());
    }
    ~TempFolder() { std::filesystem::remove_all(m_path); }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    [[nodiscard]] std::string file(const std::string& name) const { return (m_path / name).string(); }

  private:
    std::filesystem::path m_path;
};

inline std::string contentOf(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// The program beside this one that writes to the database.
class Writer {
  public:
    explicit Writer(const std::string& path) {
        EXPECT_EQ(sqlite3_open(path.c_str(), &m_database), SQLITE_OK) << path;
        run("PRAGMA synchronous = OFF");  // nothing here has to survive a power failure
    }
    ~Writer() { sqlite3_close(m_database); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    void run(const std::string& sql) const {
        EXPECT_EQ(tryRun(sql), SQLITE_OK) << sql << ": " << sqlite3_errmsg(m_database);
    }
    [[nodiscard]] int tryRun(const std::string& sql) const {
        return sqlite3_exec(m_database, sql.c_str(), nullptr, nullptr, nullptr);
    }

  private:
    sqlite3* m_database = nullptr;
};

inline void makeDatabase(const std::string& path, const std::string& sql) {
    Writer(path).run(sql);
}

// A table of `count` rows (i INTEGER, x REAL) with i from 0.
inline std::string numbersTable(const std::string& name, int count) {
    return "CREATE TABLE " + name +
           "(i INTEGER, x REAL); WITH RECURSIVE c(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM c "
           "WHERE i + 1 < " +
           std::to_string(count) + ") INSERT INTO " + name + " SELECT i, i * 0.5 FROM c;";
}

class Messenger : public relay2::IMessenger {
  public:
    void post(relay2::severity_t severity, const std::string& text,
              basekit2::source_position_t position) override {
        EXPECT_EQ(severity, relay2::severity_t::error);
        texts.push_back(text);
        lines.push_back(position.line);
    }
    // The only message so far; forgets it.
    std::string take() {
        EXPECT_EQ(texts.size(), 1u);
        std::string text = texts.empty() ? "" : texts.back();
        texts.clear();
        lines.clear();
        return text;
    }

    std::vector<std::string> texts;
    std::vector<std::uint32_t> lines;
};

struct OwnSource {
    CancelSource source;
};

// Cancelled on request, or after some time.
class Progress : private OwnSource, public TokenProgress {
  public:
    Progress() : TokenProgress(source.token()) {}

    void cancel() { source.cancel(); }
    void cancelAfter(std::chrono::milliseconds delay) {
        m_timer = std::jthread([this, delay](const std::stop_token& stop) {
            std::mutex mutex;
            std::unique_lock lock(mutex);
            std::condition_variable_any end;
            const auto deadline = std::chrono::steady_clock::now() + delay;
            end.wait_until(lock, stop, deadline, [] { return false; });
            if (!stop.stop_requested()) cancel();
        });
    }

  private:
    std::jthread m_timer;
};

// How long to wait for a lock, and how much queries may use.
struct Settings {
    std::chrono::milliseconds busy{5'000};
    std::chrono::milliseconds query{600'000};
    std::uint64_t memory = QueryLimits().memory;
};

using Attributes = std::vector<std::pair<std::string, std::string>>;

// A pane on a database, without the diagram library: declares queries and runs references.
class Pane {
  public:
    explicit Pane(std::string path, Settings settings = {}) : m_path(std::move(path)), m_settings(settings) {}

    // Lines are counted from 1 in the order of the calls.
    Pane& query(const std::string& id, const std::string& from, const std::string& expression,
                const Attributes& attributes = {}) {
        variant_bag_t& element = m_queries.add_variant_bag("query");
        element.put("id", id);
        element.put("from", from);
        element.put("", expression);
        for (const auto& [name, value] : attributes)
            element.put(name, value);
        element.set_position({++m_line, 1});
        return *this;
    }
    Pane& filter(const std::string& name, const std::string& predicate) {
        m_filters[name] = {predicate, {}};
        return *this;
    }

    IResult& result() {
        open();
        return *m_result;
    }
    std::shared_ptr<IResult> sharedResult() {
        open();
        return m_result;
    }
    SnapshotSource& source() {
        open();
        return *m_source;
    }
    // REQUIRES: the snapshot is one of this pane.
    static Connection& connection(const SnapshotUse& use) {
        return dynamic_cast<SqliteSnapshot&>(use.snapshot()).connection();
    }
    const Declarations& declarations() {
        open();
        return *m_declarations;
    }
    const Filters& filters() const { return m_filters; }
    const variant_bag_t& document() const { return m_document; }
    sptr_t<ReferenceQuery> reference(const std::string& text) {
        open();
        variant_bag_t definition;
        definition.add_variant_bag("queryRef").put("", text);
        const auto columns = qlib_1::IVectorQuery::cast(m_library->buildQuery(definition, &messenger));
        EXPECT_FALSE(columns.is_null()) << text;
        return basekit2::object_registry_t::process().query<ReferenceQuery>(columns->at(0));
    }
    sptr_t<InputData> inputData() {
        open();
        return m_inputData;
    }
    sptr_t<QueryLibrary> library() {
        open();
        return m_library;
    }

    // Runs a row set of these references under all filters.
    error_code_t run(const std::vector<std::string>& references, sptr_t<qlib_1::ITableTree>& tree,
                     relay2::IProgress* progress = nullptr) {
        open();
        variant_bag_t definition;
        for (const std::string& reference : references)
            definition.add_variant_bag("queryRef").put("", reference);
        const auto columns = qlib_1::IVectorQuery::cast(m_library->buildQuery(definition, &messenger));
        EXPECT_FALSE(columns.is_null()) << references.front();
        const auto query = slicekit_1_0::ITableTreeQuery::create();
        query->setInputData(m_inputData);
        EXPECT_TRUE(query->setRowGrouping(qlib_1::IVectorQuery::create({m_library->getQuery("RootGrouping")}))
                        .is_success());
        EXPECT_TRUE(query->setColumns(columns).is_success());
        query->endColumns();
        for (const auto& [name, filter] : m_filters)
            EXPECT_TRUE(query->addFilter(name).is_success());
        return query->run(progress, true, tree);
    }

    // The text of one reference; of a failed one the error's name in brackets.
    std::string value(const std::string& reference, relay2::IProgress* progress = nullptr) {
        sptr_t<qlib_1::ITableTree> tree;
        const error_code_t error = run({reference}, tree, progress);
        if (!error.is_success()) {
            EXPECT_TRUE(tree.is_null());
            return std::string("[") + error.name() + "]";
        }
        return qlibhelpers_1_x::createTableTreeHelper(tree).cell_text();
    }

    // The message with which a reference fails.
    std::string failure(const std::string& reference) {
        EXPECT_EQ(value(reference), "[FailedTo]") << reference;
        return messenger.take();
    }

    Messenger messenger;

  private:
    void open() {
        if (m_library) return;
        auto opened = SqliteResult::open(m_path, m_settings.busy, {});
        ASSERT_TRUE(opened) << opened.error().text;
        m_result = *std::move(opened);
        m_source = std::make_shared<SnapshotSource>(m_result);
        m_declarations = Declarations::read(m_document);
        m_library = basekit2::make_counted<QueryLibrary>(m_declarations);
        m_inputData = basekit2::make_counted<InputData>(m_source, m_declarations, m_filters, &messenger,
                                                        QueryLimits{m_settings.query, m_settings.memory});
    }

    const std::string m_path;
    const Settings m_settings;
    variant_bag_t m_document;
    variant_bag_t& m_queries = m_document.add_variant_bag("queries");
    std::uint32_t m_line = 0;
    Filters m_filters;
    std::shared_ptr<IResult> m_result;
    std::shared_ptr<SnapshotSource> m_source;
    std::shared_ptr<const Declarations> m_declarations;
    sptr_t<QueryLibrary> m_library;
    sptr_t<InputData> m_inputData;
};

inline std::chrono::milliseconds elapsedSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
}

}  // namespace tessera_host::sqlite_test
