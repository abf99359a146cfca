#include "tests/support/memory_host.h"

#include <gtest/gtest.h>

#include "core/factory.h"
#include "host/text/json_writer.h"
#include "host/text/xml_reader.h"

namespace tessera_test {
namespace {

class MemoryColumn final : public basekit2::ref_counted_t<qlib_1::IColumnInfo> {
  public:
    MemoryColumn(std::uint32_t flags, sptr_t<qlib_1::IQuery> query, std::size_t member)
        : m_flags(flags), m_query(std::move(query)), m_member(member) {}
    std::uint32_t getFlags() const noexcept override { return m_flags; }
    sptr_t<qlib_1::IQuery> getQuery() const override { return m_query; }
    std::size_t getMemberIndex() const noexcept override { return m_member; }

  private:
    std::uint32_t m_flags;
    sptr_t<qlib_1::IQuery> m_query;
    std::size_t m_member;
};

class MemoryRow final : public basekit2::ref_counted_t<qlib_1::ITableRow> {
  public:
    explicit MemoryRow(std::vector<std::string> cells) : m_cells(std::move(cells)) {}
    std::string getCellText(std::size_t column) const override { return m_cells.at(column); }

  private:
    std::vector<std::string> m_cells;
};

class MemoryTree final : public basekit2::ref_counted_t<qlib_1::ITableTree> {
  public:
    std::size_t getColumnCount() const noexcept override { return columns.size(); }
    sptr_t<qlib_1::IColumnInfo> getColumn(std::size_t index) const override { return columns.at(index); }
    std::size_t getRowCount() const noexcept override { return rows.size(); }
    sptr_t<qlib_1::ITableRow> getRow(std::size_t index) const override { return rows.at(index); }

    std::vector<sptr_t<qlib_1::IColumnInfo>> columns;
    std::vector<sptr_t<qlib_1::ITableRow>> rows;
};

class MemoryRegistry final : public basekit2::ref_counted_t<qlib_1::IFilterRegistry> {
  public:
    explicit MemoryRegistry(std::shared_ptr<MemoryResult> result) : m_result(std::move(result)) {}
    bool hasFilter(const std::string& name) const override { return m_result->filters.contains(name); }

  private:
    std::shared_ptr<MemoryResult> m_result;
};

class MemoryEngine final : public basekit2::ref_counted_t<slicekit_1_0::ITableTreeEngine> {
  public:
    explicit MemoryEngine(std::shared_ptr<MemoryResult> result) : m_result(std::move(result)) {}

    error_code_t run(const slicekit_1_0::table_tree_request_t& request, relay2::IProgress* progress, bool,
                     sptr_t<qlib_1::ITableTree>& tree) override {
        m_result->runs.push_back(request);
        if (progress && progress->isCancelled())
            return error_code_t::raise(bk2::error::Cancelled(_U("Cancelled")), __func__, __FILE__, __LINE__);
        auto answer = basekit2::make_counted<MemoryTree>();
        std::vector<std::string> cells;
        const auto add = [&](const sptr_t<qlib_1::IQuery>& member, sptr_t<qlib_1::IQuery> shown,
                             std::size_t index) {
            answer->columns.push_back(
                basekit2::make_counted<MemoryColumn>(m_result->columnFlags, std::move(shown), index));
            cells.push_back(valueOf(member->getIdentifier(), request.filters));
        };
        for (const std::string& name : m_result->extraColumns) {
            const sptr_t<qlib_1::IQuery> extra = basekit2::make_counted<MemoryQuery>(name);
            add(extra, extra, 0);
        }
        for (std::size_t i = 0; i < request.columns->size(); ++i) {
            const auto member = request.columns->at(i);
            if (m_result->failing.contains(member->getIdentifier()))
                return error_code_t::raise(bk2::error::FailedTo(_U("run")), __func__, __FILE__, __LINE__);
            add(member, m_result->columnsAnswerVector ? sptr_t<qlib_1::IQuery>(request.columns) : member, i);
        }
        for (std::size_t row = 0; row < m_result->rowCount; ++row) {
            std::vector<std::string> texts = cells;
            if (row > 0)
                for (std::string& text : texts)
                    text = "row" + std::to_string(row) + " " + text;
            answer->rows.push_back(basekit2::make_counted<MemoryRow>(std::move(texts)));
        }
        tree = answer;
        return {};
    }

  private:
    std::string valueOf(const std::string& identifier, const std::vector<std::string>& filters) const {
        for (const std::string& filter : filters)
            if (const auto it = m_result->filteredValues.find(filter + ":" + identifier);
                it != m_result->filteredValues.end())
                return it->second;
        const auto it = m_result->values.find(identifier);
        return it == m_result->values.end() ? std::string() : it->second;
    }

    std::shared_ptr<MemoryResult> m_result;
};

}  // namespace

sptr_t<basekit2::IObject> MemoryQueryLibrary::queryInterface(type_id_t id) {
    if (id == qlib_1::IQueryLibrary::typeId) return sptr_t<basekit2::IObject>::share(this);
    return nullptr;
}

sptr_t<qlib_1::IQuery> MemoryQueryLibrary::buildQuery(const variant_bag_t& definition,
                                                      relay2::IMessenger* messenger) {
    ++built;
    std::vector<sptr_t<qlib_1::IQuery>> members;
    for (auto child = definition.begin(); !child.at_end(); child.next()) {
        const basekit2::variant_t* text = child.get_value().get("");
        if (child.get_name() != "queryRef" || text == nullptr) continue;
        const std::string reference(text->get<std::string_view>());
        if (!reference.starts_with('/') || (!known.empty() && !known.contains(reference.substr(1)))) {
            if (messenger)
                messenger->post(relay2::severity_t::error, "no query " + reference,
                                child.get_value().position());
            return nullptr;
        }
        members.push_back(basekit2::make_counted<MemoryQuery>(reference.substr(1)));
    }
    return qlib_1::IVectorQuery::create(std::move(members));
}

sptr_t<qlib_1::IQuery> MemoryQueryLibrary::getQuery(const std::string& name) {
    if (name == "RootGrouping" && hasRootGrouping) return basekit2::make_counted<MemoryQuery>(name);
    return nullptr;
}

sptr_t<basekit2::IObject> MemoryInputData::queryInterface(type_id_t id) {
    if (id == qlib_1::IInputData::typeId) return sptr_t<basekit2::IObject>::share(this);
    if (id == qlib_1::IFilterRegistry::typeId && m_result->hasRegistry)
        return basekit2::make_counted<MemoryRegistry>(m_result);
    if (id == slicekit_1_0::ITableTreeEngine::typeId && m_result->hasEngine)
        return basekit2::make_counted<MemoryEngine>(m_result);
    return nullptr;
}

error_code_t MemoryBaseHandler::handleRequest(const std::string& name, const variant_bag_t&,
                                              variant_bag_t& out, relay2::IProgress*) {
    ++calls;
    if (name != "config")
        return error_code_t::raise(bk2::error::FailedTo(RTBASE_2_18::strings::ustring8(name)), __func__,
                                   __FILE__, __LINE__);
    out = config;
    return {};
}

MemoryHost::MemoryHost(const std::string& viewpointXml)
    : base(std::make_shared<MemoryBaseHandler>(bagOf(viewpointXml))) {}

std::shared_ptr<panelcore_1::IRequestHandler> MemoryHost::makeHandler() {
    return tessera_1::createDiagramViewRequestHandler(library, inputData, base, filterMgr, &messenger);
}

std::shared_ptr<panelcore_1::IRequestHandler> MemoryHost::makeHandler(
    const tessera_1::LayoutOptions& options) {
    return tessera_1::createDiagramViewRequestHandlerWithOptions(library, inputData, base, filterMgr,
                                                                 &messenger, options);
}

variant_bag_t bagOf(const std::string& xml) {
    auto bag = tessera_host::readXmlText(xml);
    if (bag) return *std::move(bag);
    ADD_FAILURE() << describe(bag.error(), "document");
    return {};
}

std::string jsonOf(const variant_bag_t& bag) {
    std::string text;
    tessera_host::StringSink sink(text);
    if (!tessera_host::writeJson(bag, sink, tessera_host::JsonForm::compact) || !sink.flush())
        ADD_FAILURE() << "the bag cannot be written";
    return text;
}

}  // namespace tessera_test
