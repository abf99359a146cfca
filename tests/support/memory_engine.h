// A second engine, in memory: tables of integers, and four expressions instead of SQL. What works with it
// knows no SQLite.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/engine/engine_registry.h"

namespace tessera_test {

// Rows of integers; columns have names.
struct MemoryTable {
    std::vector<std::string> columns;
    std::vector<std::vector<int>> rows;
};
using MemoryTables = std::map<std::string, MemoryTable>;

// Knows the expressions COUNT, SUM c, MAX c and LOOP, which runs until it is cancelled; filters are "c = N".
class MemoryResultStore final : public tessera_host::IResult,
                                public std::enable_shared_from_this<MemoryResultStore> {
  public:
    explicit MemoryResultStore(MemoryTables tables, std::string address = "memory://tables")
        : m_address(std::move(address)), m_tables(std::make_shared<MemoryTables>(std::move(tables))) {}

    [[nodiscard]] const std::string& address() const noexcept override { return m_address; }
    [[nodiscard]] std::string_view engineName() const noexcept override { return "memory"; }
    [[nodiscard]] tessera_host::Expected<std::unique_ptr<tessera_host::ISnapshot>> begin(
        const tessera_host::RunOptions& options) override;

    // Later snapshots see these tables.
    void replace(MemoryTables tables);

    // What snapshots have done so far.
    std::atomic<int> snapshots{0};
    std::atomic<int> single{0};
    std::atomic<int> together{0};  // calls of answerTogether()
    // The work that answer() reports.
    std::atomic<std::uint64_t> work{1};
    // Makes begin() fail.
    std::atomic<bool> isLocked{false};

  private:
    const std::string m_address;
    std::mutex m_mutex;
    std::shared_ptr<const MemoryTables> m_tables;
};

// Registers the scheme "memory" and the ending ".memory"; every address is the same store.
[[nodiscard]] tessera_host::Engine memoryEngine(std::shared_ptr<MemoryResultStore> store);

}  // namespace tessera_test
