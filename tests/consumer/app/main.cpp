// The smallest host that shows a diagram: one table in memory, one request, no file, no database.
#include <cstdio>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/factory.h"
#include "platform/basekit2/ref_counted.h"
#include "platform/slicekit_1_0/table_tree_query.h"

namespace {

using basekit2::error_code_t;
using basekit2::make_counted;
using basekit2::ref_counted_t;
using basekit2::sptr_t;
using basekit2::type_id_t;
using basekit2::variant_bag_t;

class Query final : public ref_counted_t<qlib_1::IQuery> {
  public:
    explicit Query(std::string identifier) : m_identifier(std::move(identifier)) {}
    std::string getIdentifier() const override { return m_identifier; }

  private:
    std::string m_identifier;
};

// Returns a query for any reference.
class QueryLibrary final : public ref_counted_t<qlib_1::IQueryLibrary> {
  public:
    sptr_t<qlib_1::IQuery> buildQuery(const variant_bag_t& definition, relay2::IMessenger*) override {
        std::vector<sptr_t<qlib_1::IQuery>> members;
        for (auto child = definition.begin(); !child.at_end(); child.next())
            if (const basekit2::variant_t* reference = child.get_value().get(""))
                members.push_back(
                    make_counted<Query>(std::string(reference->get<std::string_view>().substr(1))));
        return qlib_1::IVectorQuery::create(std::move(members));
    }
    sptr_t<qlib_1::IQuery> getQuery(const std::string& name) override { return make_counted<Query>(name); }
};

class Column final : public ref_counted_t<qlib_1::IColumnInfo> {
  public:
    explicit Column(sptr_t<qlib_1::IQuery> query) : m_query(std::move(query)) {}
    std::uint32_t getFlags() const noexcept override { return qlib_1::columnIsValue; }
    sptr_t<qlib_1::IQuery> getQuery() const override { return m_query; }
    std::size_t getMemberIndex() const noexcept override { return 0; }

  private:
    sptr_t<qlib_1::IQuery> m_query;
};

class Row final : public ref_counted_t<qlib_1::ITableRow> {
  public:
    explicit Row(std::vector<std::string> cells) : m_cells(std::move(cells)) {}
    std::string getCellText(std::size_t column) const override { return m_cells[column]; }

  private:
    std::vector<std::string> m_cells;
};

// One row, with one column per query.
class Table final : public ref_counted_t<qlib_1::ITableTree> {
  public:
    Table(sptr_t<qlib_1::IVectorQuery> columns, sptr_t<qlib_1::ITableRow> row)
        : m_columns(std::move(columns)), m_row(std::move(row)) {}
    std::size_t getColumnCount() const noexcept override { return m_columns->size(); }
    sptr_t<qlib_1::IColumnInfo> getColumn(std::size_t index) const override {
        return make_counted<Column>(m_columns->at(index));
    }
    std::size_t getRowCount() const noexcept override { return 1; }
    sptr_t<qlib_1::ITableRow> getRow(std::size_t) const override { return m_row; }

  private:
    sptr_t<qlib_1::IVectorQuery> m_columns;
    sptr_t<qlib_1::ITableRow> m_row;
};

class Engine final : public ref_counted_t<slicekit_1_0::ITableTreeEngine> {
  public:
    error_code_t run(const slicekit_1_0::table_tree_request_t& request, relay2::IProgress*, bool,
                     sptr_t<qlib_1::ITableTree>& tree) override {
        static const std::map<std::string, std::string> values{{"Oven/temperature", "220 C"},
                                                               {"Loaf/weight", "750 g"}};
        std::vector<std::string> cells;
        for (std::size_t i = 0; i < request.columns->size(); ++i) {
            const auto value = values.find(request.columns->at(i)->getIdentifier());
            cells.push_back(value == values.end() ? "" : value->second);
        }
        tree = make_counted<Table>(request.columns, make_counted<Row>(std::move(cells)));
        return {};
    }
};

class NoFilters final : public ref_counted_t<qlib_1::IFilterRegistry> {
  public:
    bool hasFilter(const std::string&) const override { return false; }
};

class InputData final : public ref_counted_t<qlib_1::IInputData> {
  public:
    sptr_t<basekit2::IObject> queryInterface(type_id_t id) override {
        if (id == slicekit_1_0::ITableTreeEngine::typeId) return make_counted<Engine>();
        if (id == qlib_1::IFilterRegistry::typeId) return make_counted<NoFilters>();
        return nullptr;
    }
};

void addNode(variant_bag_t& graph, variant_bag_t& display, const char* id, const char* label,
             const char* reference) {
    graph.add_variant_bag("node").put("id", id);
    variant_bag_t& shown = display.add_variant_bag("node");
    shown.put("id", id);
    shown.put("displayName", id);
    variant_bag_t& row = shown.add_variant_bag("rowSet").add_variant_bag("queryRef");
    row.put("displayName", label);
    row.put("", reference);
}

// The pane's base handler: its only request is "config", which writes the viewpoint.
class Pane final : public panelcore_1::IRequestHandler {
  public:
    std::string getDomainName() const override { return "pane"; }
    error_code_t handleRequest(const std::string&, const variant_bag_t&, variant_bag_t& out,
                               relay2::IProgress*) override {
        variant_bag_t& diagram = out.add_variant_bag("diagram");
        variant_bag_t& graph = diagram.add_variant_bag("graph");
        variant_bag_t& display = diagram.add_variant_bag("display");
        graph.put("id", "bakery");
        addNode(graph, display, "oven", "Temperature", "/Oven/temperature");
        addNode(graph, display, "loaf", "Weight", "/Loaf/weight");
        variant_bag_t& link = graph.add_variant_bag("link");
        link.put("id", "oven-loaf");
        link.put("from", "oven");
        link.put("to", "loaf");
        link.put("direction", "forward");
        return {};
    }
};

std::string text(const variant_bag_t& bag, const char* name) {
    const basekit2::variant_t* value = bag.get(name);
    return value && value->can_get<const char*>() ? value->get<const char*>() : "";
}

// Returns "id: label = value" of a node, or "id" when it shows no value.
std::string describe(const variant_bag_t& node) {
    const variant_bag_t* info = node.get_variant_bag("info");
    const variant_bag_t* rows = info ? info->get_variant_bag("rows") : nullptr;
    const variant_bag_t* row = rows ? rows->get_variant_bag("row") : nullptr;
    return text(node, "id") + (row ? ": " + text(*row, "name") + " = " + text(*row, "value") : "");
}

}  // namespace

int main() {
    const auto handler = tessera_1::createDiagramViewRequestHandler(
        make_counted<QueryLibrary>(), make_counted<InputData>(), std::make_shared<Pane>(), nullptr, nullptr);
    variant_bag_t out;
    const error_code_t code = handler->handleRequest("create", variant_bag_t(), out, nullptr);
    if (!code.is_success()) {
        std::fprintf(stderr, "create: %s %s\n", code.name(), code.message().c_str());
        return 1;
    }
    const variant_bag_t* nodes = out.get_variant_bag("nodes");
    const variant_bag_t* links = out.get_variant_bag("links");
    if (!nodes || !links || !links->get_variant_bag("link")) {
        std::fputs("the diagram has no nodes or no links\n", stderr);
        return 1;
    }
    std::string found;
    for (auto node = nodes->begin(); !node.at_end(); node.next())
        found += describe(node.get_value()) + "\n";
    std::fputs(found.c_str(), stdout);
    if (found != "oven: Temperature = 220 C\nloaf: Weight = 750 g\n") {
        std::fputs("these are not the expected nodes\n", stderr);
        return 1;
    }
    return 0;
}
