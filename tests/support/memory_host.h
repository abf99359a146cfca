// A host in memory: queries are names, values are in a table, nothing is opened.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "core/layout_options.h"
#include "tests/support/forwarding.h"

namespace tessera_test {

class MemoryQuery final : public basekit2::ref_counted_t<qlib_1::IQuery> {
  public:
    explicit MemoryQuery(std::string identifier) : m_identifier(std::move(identifier)) {}
    std::string getIdentifier() const override { return m_identifier; }

  private:
    std::string m_identifier;
};

// Accepts a definition when each of its references is "/" and the name of a known query; with no known names,
// every one is accepted.
class MemoryQueryLibrary final : public basekit2::ref_counted_t<qlib_1::IQueryLibrary> {
  public:
    sptr_t<basekit2::IObject> queryInterface(type_id_t id) override;
    sptr_t<qlib_1::IQuery> buildQuery(const variant_bag_t& definition,
                                      relay2::IMessenger* messenger) override;
    sptr_t<qlib_1::IQuery> getQuery(const std::string& name) override;

    std::set<std::string> known;
    bool hasRootGrouping = true;
    std::atomic<int> built{0};
};

// The requests of the last runs, and the values for the next ones. Changed between requests only.
struct MemoryResult {
    std::map<std::string, std::string> values;  // by query identifier
    std::map<std::string, std::string>
        filteredValues;             // take precedence when the run has that filter: key "FILTER:identifier"
    std::set<std::string> filters;  // that the registry has
    std::set<std::string> failing;  // identifiers whose column makes the run fail
    std::vector<slicekit_1_0::table_tree_request_t> runs;
    std::uint32_t columnFlags = qlib_1::columnIsValue;
    bool columnsAnswerVector = true;        // getQuery of a column is the whole vector, not the member
    std::vector<std::string> extraColumns;  // identifiers of additional columns before the requested ones
    bool hasRegistry = true;
    bool hasEngine = true;
    std::size_t rowCount = 1;  // every row after the first has "rowN " in front of its values
};

class MemoryInputData final : public basekit2::ref_counted_t<qlib_1::IInputData> {
  public:
    explicit MemoryInputData(std::shared_ptr<MemoryResult> result) : m_result(std::move(result)) {}
    sptr_t<basekit2::IObject> queryInterface(type_id_t id) override;

  private:
    std::shared_ptr<MemoryResult> m_result;
};

struct Message {
    relay2::severity_t severity;
    std::string text;
    basekit2::source_position_t position;
};

class MemoryMessenger final : public relay2::IMessenger {
  public:
    void post(relay2::severity_t severity, const std::string& text,
              basekit2::source_position_t position) override {
        const std::scoped_lock lock(m_mutex);
        messages.push_back({severity, text, position});
    }
    std::vector<Message> messages;

  private:
    std::mutex m_mutex;
};

// Cancelled from the call number `cancelAt` (from 1) on; 0 is never.
class CountingProgress final : public relay2::IProgress {
  public:
    explicit CountingProgress(int cancelAt = 0) : m_cancelAt(cancelAt) {}
    bool isCancelled() const override {
        const int call = ++m_calls;
        return m_cancelAt > 0 && call >= m_cancelAt;
    }
    int calls() const { return m_calls; }

  private:
    int m_cancelAt;
    mutable std::atomic<int> m_calls{0};
};

// The base handler: its "config" returns the given bag.
class MemoryBaseHandler final : public panelcore_1::IRequestHandler {
  public:
    explicit MemoryBaseHandler(variant_bag_t configuration) : config(std::move(configuration)) {}
    std::string getDomainName() const override { return "base"; }
    error_code_t handleRequest(const std::string& name, const variant_bag_t& in, variant_bag_t& out,
                               relay2::IProgress* progress) override;

    variant_bag_t config;
    std::atomic<int> calls{0};
};

class MemoryFilterMgr final : public panelcore_1::IFilterMgr {
  public:
    std::vector<std::string> getFilterNames() const override { return names; }
    std::vector<std::string> names;
};

class MemoryCatalog final : public RTBASE_2_18::i18n::catalog_t {
  public:
    explicit MemoryCatalog(std::map<std::string, std::string> texts) : m_texts(std::move(texts)) {}
    bool has_message(const std::string& key) const override { return m_texts.contains(key); }
    RTBASE_2_18::i18n::message_t message(const std::string& key) const override {
        return RTBASE_2_18::i18n::message_t(m_texts.at(key));
    }

  private:
    std::map<std::string, std::string> m_texts;
};

class MemoryCatalogSource final : public optstore2::IMessageCatalogSource {
  public:
    std::shared_ptr<const RTBASE_2_18::i18n::catalog_t> getCatalog(const std::string& name) const override {
        const auto it = catalogs.find(name);
        return it == catalogs.end() ? nullptr : it->second;
    }
    std::map<std::string, std::shared_ptr<const RTBASE_2_18::i18n::catalog_t>> catalogs;
};

// All parts of such a host, and a handler on them.
struct MemoryHost {
    explicit MemoryHost(const std::string& viewpointXml);

    sptr_t<MemoryQueryLibrary> library = basekit2::make_counted<MemoryQueryLibrary>();
    std::shared_ptr<MemoryResult> result = std::make_shared<MemoryResult>();
    sptr_t<MemoryInputData> inputData = basekit2::make_counted<MemoryInputData>(result);
    std::shared_ptr<MemoryBaseHandler> base;
    std::shared_ptr<MemoryFilterMgr> filterMgr = std::make_shared<MemoryFilterMgr>();
    MemoryMessenger messenger;

    std::shared_ptr<panelcore_1::IRequestHandler> makeHandler();
    std::shared_ptr<panelcore_1::IRequestHandler> makeHandler(const tessera_1::LayoutOptions& options);
};

// The bag of a document; fails the test when the text is not well-formed.
variant_bag_t bagOf(const std::string& xml);

// The bag as JSON, for comparing and for reading.
std::string jsonOf(const variant_bag_t& bag);

}  // namespace tessera_test
