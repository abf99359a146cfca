// An SQLite file as a result.
#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/engine/result.h"
#include "host/engine/sqlite/database.h"

namespace tessera_host {

// Keeps a few connections. A snapshot has one of them for itself, so several threads may have snapshots at
// once; each connection keeps its prepared statements for the snapshots that come after.
class SqliteResult final : public IResult, public std::enable_shared_from_this<SqliteResult> {
  public:
    // Opens the file and makes sure that it is a database. The error is a clause that does not name the file.
    [[nodiscard]] static Expected<std::shared_ptr<SqliteResult>> open(const std::string& path,
                                                                      std::chrono::milliseconds lockWait,
                                                                      const CancelToken& cancel);

    [[nodiscard]] const std::string& address() const noexcept override { return m_path; }
    [[nodiscard]] std::string_view engineName() const noexcept override { return "SQLite"; }
    [[nodiscard]] Expected<std::unique_ptr<ISnapshot>> begin(const RunOptions& options) override;

  private:
    friend class SqliteSnapshot;

    SqliteResult(std::string path, std::chrono::milliseconds lockWait)
        : m_path(std::move(path)), m_lockWait(lockWait) {}

    [[nodiscard]] std::unique_ptr<Database> takeDatabase();
    void giveBack(std::unique_ptr<Database> database);

    const std::string m_path;
    const std::chrono::milliseconds m_lockWait;
    std::mutex m_mutex;
    std::vector<std::unique_ptr<Database>> m_idle;  // the one that was used last comes last
};

// One state of the file, seen through one connection.
class SqliteSnapshot final : public ISnapshot {
  public:
    // REQUIRES: a snapshot has been begun on `database`.
    SqliteSnapshot(std::shared_ptr<SqliteResult> result, std::unique_ptr<Database> database)
        : m_result(std::move(result)), m_database(std::move(database)) {}
    ~SqliteSnapshot() override;

    [[nodiscard]] Expected<void> state() const override;
    [[nodiscard]] Expected<Answer> answer(const Question& question, const RunOptions& options) override;
    [[nodiscard]] Expected<std::vector<std::optional<CellValue>>> answerTogether(
        std::span<const Question> questions, std::uint64_t maxWork, const RunOptions& options) override;
    [[nodiscard]] Expected<void> checkFilter(const NamedFilter& filter) override;
    [[nodiscard]] std::vector<std::string> check(const Selection& selection,
                                                 const RunOptions& options) override;
    [[nodiscard]] Expected<std::vector<StatementPlan>> explain(std::span<const Question> questions,
                                                               const RunOptions& options) override;

    [[nodiscard]] Connection& connection() noexcept { return m_database->connection(); }

  private:
    const std::shared_ptr<SqliteResult> m_result;
    std::unique_ptr<Database> m_database;
};

}  // namespace tessera_host
