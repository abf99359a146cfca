#include "tests/support/memory_engine.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <sstream>
#include <thread>

namespace tessera_test {
namespace {

using namespace tessera_host;

Error failed(std::string text) {
    return {ErrorKind::failed, std::move(text)};
}

std::vector<std::string> wordsOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

class Snapshot final : public ISnapshot {
  public:
    Snapshot(std::shared_ptr<MemoryResultStore> store, std::shared_ptr<const MemoryTables> tables)
        : m_store(std::move(store)), m_tables(std::move(tables)) {}

    Expected<void> state() const override { return {}; }

    Expected<Answer> answer(const Question& question, const RunOptions& options) override {
        ++m_store->single;
        auto value = valueOf(question, options);
        if (!value) return std::move(value).error();
        return Answer{*std::move(value), m_store->work};
    }

    Expected<std::vector<std::optional<CellValue>>> answerTogether(std::span<const Question> questions,
                                                                   std::uint64_t /*maxWork*/,
                                                                   const RunOptions& options) override {
        ++m_store->together;
        std::vector<std::optional<CellValue>> values(questions.size());
        for (std::size_t i = 0; i < questions.size(); ++i) {
            auto value = valueOf(questions[i], options);
            if (value)
                values[i] = *std::move(value);
            else if (value.error().isCancelled())
                return std::move(value).error();
        }
        return values;
    }

    Expected<void> checkFilter(const NamedFilter& filter) override {
        const auto words = wordsOf(filter.predicate);
        if (words.size() == 3 && words[1] == "=") return {};
        return failed("filter \"" + filter.name + "\" is not \"COLUMN = NUMBER\"");
    }

    std::vector<std::string> check(const Selection& selection, const RunOptions& /*options*/) override {
        const auto table = tableOf(selection);
        if (!table) return {table.error().text};
        const auto words = wordsOf(selection.expression);
        if (words.empty()) return {"the expression is empty"};
        if (words.size() == 2 && !columnOf(**table, words[1])) return {"there is no column " + words[1]};
        return {};
    }

    Expected<std::vector<StatementPlan>> explain(std::span<const Question> questions,
                                                 const RunOptions& /*options*/) override {
        const Selection& selection = *questions.front().selection;
        return std::vector<StatementPlan>{{StatementPlan::Method::oneByOne,
                                           questions.size(),
                                           selection.expression,
                                           {"scan " + selection.from}}};
    }

  private:
    Expected<const MemoryTable*> tableOf(const Selection& selection) const {
        const auto it = m_tables->find(selection.from);
        if (it == m_tables->end()) return failed("there is no table " + selection.from);
        return &it->second;
    }

    static std::optional<std::size_t> columnOf(const MemoryTable& table, const std::string& name) {
        const auto it = std::find(table.columns.begin(), table.columns.end(), name);
        if (it == table.columns.end()) return std::nullopt;
        return static_cast<std::size_t>(it - table.columns.begin());
    }

    static bool matches(const MemoryTable& table, const std::vector<int>& row, const std::string& column,
                        const std::string& value) {
        const auto index = columnOf(table, column);
        return index && std::to_string(row[*index]) == value;
    }

    static bool isSelected(const MemoryTable& table, const std::vector<int>& row, const Question& question) {
        const Selection& selection = *question.selection;
        for (std::size_t i = 0; i < selection.keys.size(); ++i)
            if (!matches(table, row, selection.keys[i], (*question.keys)[i])) return false;
        return std::all_of(selection.filters.begin(), selection.filters.end(), [&](const NamedFilter& each) {
            const auto words = wordsOf(each.predicate);
            return matches(table, row, words[0], words[2]);
        });
    }

    Expected<CellValue> valueOf(const Question& question, const RunOptions& options) const {
        if (options.cancel.isCancelled()) return cancelledError();
        const auto table = tableOf(*question.selection);
        if (!table) return table.error();
        const auto words = wordsOf(question.selection->expression);
        if (words.at(0) == "LOOP") {
            while (!options.cancel.isCancelled())
                std::this_thread::yield();
            return cancelledError();
        }
        std::int64_t count = 0;
        std::int64_t sum = 0;
        std::int64_t max = std::numeric_limits<std::int64_t>::min();
        const auto column = words.size() == 2 ? columnOf(**table, words[1]) : std::size_t{0};
        if (!column) return failed("there is no column " + words[1]);
        for (const std::vector<int>& row : (*table)->rows) {
            if (!isSelected(**table, row, question)) continue;
            ++count;
            sum += row[*column];
            max = std::max<std::int64_t>(max, row[*column]);
        }
        if (words[0] == "COUNT") return CellValue(count);
        if (count == 0) return CellValue();
        return CellValue(words[0] == "SUM" ? sum : max);
    }

    const std::shared_ptr<MemoryResultStore> m_store;
    const std::shared_ptr<const MemoryTables> m_tables;
};

}  // namespace

Expected<std::unique_ptr<ISnapshot>> MemoryResultStore::begin(const RunOptions& options) {
    if (options.cancel.isCancelled()) return cancelledError();
    if (isLocked) return failed("the tables are locked");
    ++snapshots;
    const std::scoped_lock lock(m_mutex);
    return std::unique_ptr<ISnapshot>(new Snapshot(shared_from_this(), m_tables));
}

void MemoryResultStore::replace(MemoryTables tables) {
    auto replaced = std::make_shared<const MemoryTables>(std::move(tables));
    const std::scoped_lock lock(m_mutex);
    m_tables.swap(replaced);
}

Engine memoryEngine(std::shared_ptr<MemoryResultStore> store) {
    Engine engine;
    engine.name = "memory";
    engine.description = "tables in memory";
    engine.schemes = {"memory"};
    engine.endings = {".memory"};
    engine.open = [store](const std::string&, const OpenOptions&,
                          const CancelToken&) -> Expected<std::shared_ptr<IResult>> {
        return std::shared_ptr<IResult>(store);
    };
    engine.checkFilterText = [](const NamedFilter&) { return Expected<void>(); };
    engine.checkText = [](const Selection&) { return std::vector<std::string>(); };
    return engine;
}

}  // namespace tessera_test
