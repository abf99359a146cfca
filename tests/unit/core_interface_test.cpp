// The promised interface: every operation with its exact signature, every field with its type, in its order.
//
// Most of this is checked by the compiler: a pointer to a member initialises a variable of exactly that type.
#include <gtest/gtest.h>

#include <array>
#include <concepts>
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/data_provider.h"
#include "core/diagram_request_handler.h"
#include "core/factory.h"
#include "core/viewpointparser.h"
#include "platform/basekit2/environ.h"
#include "platform/basekit2/object_registry.h"
#include "platform/diaglog_1/log.h"
#include "platform/optstore2/message_catalog_source.h"
#include "platform/panelcore_1/task_displacement_strategy.h"
#include "platform/qlibhelpers_1_x/table_tree_helper.h"

namespace tessera_test {
namespace {

using namespace tessera_1::view_model;
using basekit2::error_code_t;
using basekit2::sptr_t;
using basekit2::variant_bag_t;
using basekit2::variant_t;
using std::shared_ptr;
using std::string;
using std::vector;
using tessera_1::DataProvider;
using tessera_1::DiagramViewRequestHandler;
using tessera_1::DViewpointParser;
using Table = std::unordered_map<string, shared_ptr<DisplayInfo>>;
using Infos = vector<shared_ptr<DisplayInfo>>;
using NodePtr = shared_ptr<Node>;
using LinkPtr = shared_ptr<Link>;
using QueryLibrary = sptr_t<qlib_1::IQueryLibrary>;
using InputData = sptr_t<qlib_1::IInputData>;
using Progress = relay2::IProgress*;
using Messenger = relay2::IMessenger*;
using BaseHandler = shared_ptr<panelcore_1::IRequestHandler>;
using FilterMgr = shared_ptr<panelcore_1::IFilterMgr>;

// Where a field begins in an object.
template <class C, class T>
std::ptrdiff_t begin(const C& object, T C::*field) {
    return reinterpret_cast<const char*>(&(object.*field)) - reinterpret_cast<const char*>(&object);
}

// Expects fields of the types named, one after the other. Returns the offset at which the last one ends.
template <class C, class... T>
std::size_t endOfFields(const C& object, std::type_identity_t<T> C::*... fields) {
    const std::array<std::ptrdiff_t, sizeof...(T)> begins{begin(object, fields)...};
    for (std::size_t i = 1; i < begins.size(); ++i)
        EXPECT_LT(begins[i - 1], begins[i]) << "field " << i;
    const std::array<std::size_t, sizeof...(T)> sizes{sizeof(T)...};
    return static_cast<std::size_t>(begins.back()) + sizes.back();
}

// ---- the model

static_assert(std::is_same_v<DataTransferTable, Table>);

TEST(Interface, NodeHasItsFieldsAndNoMore) {
    const auto end =
        endOfFields<Node, string, string, string, NodePtr, std::int32_t, std::int32_t, vector<NodePtr>,
                    vector<NodePtr>, vector<NodePtr>, shared_ptr<DisplayInfo>, Table, string, string, string>(
            *std::make_shared<Node>(), &Node::m_id, &Node::m_type, &Node::m_displayName, &Node::m_group,
            &Node::m_hierarchicalLevel, &Node::m_groupLevel, &Node::m_groupChildren, &Node::m_children,
            &Node::m_parents, &Node::m_info, &Node::m_dataTransfers, &Node::m_location, &Node::m_aligning,
            &Node::m_displayType);
    EXPECT_EQ(end, sizeof(Node));
}

TEST(Interface, LinkHasItsFieldsAndNoMore) {
    const auto end = endOfFields<Link, string, string, string, NodePtr, NodePtr, LinkPtr, LinkPtr, string,
                                 LinkDisplayInfo>(
        Link(), &Link::m_id, &Link::m_type, &Link::m_displayName, &Link::m_from, &Link::m_to,
        &Link::m_realLink, &Link::m_dummyLink, &Link::m_direction, &Link::m_displayInfo);
    EXPECT_EQ(end, sizeof(Link));
    const auto endOfData = endOfFields<LinkDisplayInfo, string, Table, Table, Table>(
        LinkDisplayInfo(), &LinkDisplayInfo::m_extraText, &LinkDisplayInfo::m_fromInfo,
        &LinkDisplayInfo::m_toInfo, &LinkDisplayInfo::m_totalInfo);
    EXPECT_EQ(endOfData, sizeof(LinkDisplayInfo));
}

TEST(Interface, GraphHasItsFieldsAndNoMore) {
    const Graph graph;
    const auto end =
        endOfFields<Graph, string, string, string, IdMap<Node>, IdMap<Link>, vector<NodePtr>, vector<LinkPtr>,
                    vector<NodePtr>, GroupLevelManager, std::map<NodePtr, HierarchicalLevelManager>>(
            graph, &Graph::m_id, &Graph::m_name, &Graph::m_displayMode, &Graph::m_nodes, &Graph::m_links,
            &Graph::m_nodeList, &Graph::m_linkList, &Graph::m_groups, &Graph::m_groupLevelManager,
            &Graph::m_levelManagers);
    EXPECT_EQ(end, sizeof(Graph));
}

TEST(Interface, DisplayInfosHaveTheirFieldsAndNoMore) {
    EXPECT_EQ((endOfFields<Row, string, string, string>(Row(), &Row::m_name, &Row::m_value, &Row::m_query)),
              sizeof(Row));
    EXPECT_EQ((endOfFields<RowSet, string, vector<Row>, bool, sptr_t<qlib_1::IVectorQuery>, variant_bag_t>(
                  RowSet(), &RowSet::m_name, &RowSet::rows, &RowSet::m_flag, &RowSet::ds, &RowSet::m_bag)),
              sizeof(RowSet));
    EXPECT_EQ((endOfFields<DisplayInfo, string, RowSet>(DisplayInfo(), &DisplayInfo::m_name,
                                                        &DisplayInfo::m_rowSet)),
              sizeof(DisplayInfo));
}

TEST(Interface, LevelManagersHaveTheirFields) {
    EXPECT_EQ((endOfFields<HierarchicalLevelManager, vector<shared_ptr<vector<NodePtr>>>>(
                  HierarchicalLevelManager(), &HierarchicalLevelManager::m_levels)),
              sizeof(HierarchicalLevelManager));
}

// A map of the model converts to the standard one, and the standard one to it.
template <class Map, class Standard>
concept TakesThePlaceOf = std::convertible_to<Map, Standard> && std::convertible_to<Standard, Map> &&
    requires(Map map, const Map constant, const string id, typename Standard::value_type entry) {
    { map[id] } -> std::same_as<typename Standard::mapped_type&>;
    { map.at(id) } -> std::same_as<typename Standard::mapped_type&>;
    { constant.at(id) } -> std::same_as<const typename Standard::mapped_type&>;
    { map.find(id)->first } -> std::same_as<const string&>;
    { map.find(id)->second } -> std::same_as<typename Standard::mapped_type&>;
    { constant.find(id) == constant.end() } -> std::same_as<bool>;
    { constant.count(id) } -> std::same_as<std::size_t>;
    { constant.contains(id) } -> std::same_as<bool>;
    { map.insert(entry).second } -> std::convertible_to<bool>;
    { map.emplace(id, entry.second).second } -> std::convertible_to<bool>;
    { map.try_emplace(id, entry.second).second } -> std::convertible_to<bool>;
    { map.insert_or_assign(id, entry.second).second } -> std::convertible_to<bool>;
    { map.erase(id) } -> std::same_as<std::size_t>;
    { map.erase(map.begin()) == map.end() } -> std::same_as<bool>;
    { *map.begin() } -> std::same_as<typename Standard::value_type&>;
    { *constant.rbegin() } -> std::same_as<const typename Standard::value_type&>;
    { constant.lower_bound(id) == constant.upper_bound(id) } -> std::same_as<bool>;
    { constant.size() } -> std::same_as<std::size_t>;
    { constant.empty() } -> std::same_as<bool>;
    map.clear();
};
static_assert(TakesThePlaceOf<decltype(Graph::m_nodes), std::map<string, NodePtr>>);
static_assert(TakesThePlaceOf<decltype(Graph::m_links), std::map<string, LinkPtr>>);

template <class T, class... Args>
constexpr bool makes = std::is_constructible_v<T, Args...>;
static_assert(makes<Node> && makes<Node, string> && makes<Node, string, Table, string> &&
              makes<Node, string, shared_ptr<DisplayInfo>, string>);
static_assert(makes<Link> && makes<Link, string> && makes<Link, string, string>);
static_assert(makes<Graph> && makes<RowSet> && makes<DisplayInfo> && makes<LinkDisplayInfo>);

// Operations whose types are exactly these.
[[maybe_unused]] constexpr std::array<error_code_t (Graph::*)(), 8> passes{
    &Graph::setLinkInfoAsNodes,
    &Graph::setGroupInfoAsNodes,
    &Graph::calculateHierarchicalLevels,
    &Graph::addDummyNodesForLabels,
    &Graph::addDummyNodesForLabelsOnCrosslevelLinks,
    &Graph::addDummyNodesForInterfaces,
    &Graph::adjustLabelLocations,
    &Graph::setGroupLevels};
[[maybe_unused]] constexpr std::array<void (Graph::*)(), 5> untestedPasses{
    &Graph::createDummyLinksForGroups, &Graph::setNodeAlignings, &Graph::setChildrenAndParents,
    &Graph::collectGroups, &Graph::clearHierarchicalLevelManagers};
static_assert(passes.size() + untestedPasses.size() == 13);

template <auto operation, class Result, class... Args>
constexpr bool isCalledWith = std::is_same_v<std::invoke_result_t<decltype(operation), Args...>, Result>;
using NodeAndLink = std::pair<NodePtr, LinkPtr>;
static_assert(isCalledWith<&Graph::addNode, void, Graph&, NodePtr>);
static_assert(isCalledWith<&Graph::addLink, void, Graph&, LinkPtr>);
static_assert(isCalledWith<&Graph::getDisplayInfos, void, Graph&, Infos&>);
static_assert(isCalledWith<&Graph::createDummyLink, void, Graph&, NodePtr, NodePtr, LinkPtr>);
static_assert(isCalledWith<&Graph::calculateHierarchicalLevelsForGroup, error_code_t, Graph&, NodePtr>);
static_assert(isCalledWith<&Graph::insertNode, NodeAndLink, Graph&, LinkPtr, Table, string>);
static_assert(isCalledWith<&Graph::insertDummyNode, NodeAndLink, Graph&, LinkPtr>);
static_assert(isCalledWith<&Graph::createInfoNode, NodePtr, Graph&, NodePtr>);
static_assert(isCalledWith<&Graph::swapNodes, void, Graph&, NodePtr, NodePtr>);
static_assert(isCalledWith<&Graph::changeNodeGroup, void, Graph&, NodePtr, NodePtr>);
static_assert(isCalledWith<&Graph::dumpTotalInfo, void, Graph&, variant_bag_t&>);
static_assert(isCalledWith<&Graph::dumpNodes, void, Graph&, variant_bag_t&>);
static_assert(isCalledWith<&Graph::dumpLinks, void, Graph&, variant_bag_t&>);

static_assert(isCalledWith<&Node::getParents, const vector<NodePtr>&, const Node&>);
static_assert(isCalledWith<&Node::getChildren, const vector<NodePtr>&, const Node&>);
static_assert(isCalledWith<&Node::getHierarchicalLevel, std::int32_t, const Node&>);
static_assert(isCalledWith<&Node::isGroup, bool, const Node&>);
static_assert(isCalledWith<&Node::addChildParent, void, NodePtr, NodePtr>, "static");
static_assert(isCalledWith<&Node::addToGroup, error_code_t, Node&, NodePtr>);
static_assert(isCalledWith<&Node::removeFromGroup, void, Node&, NodePtr>);
static_assert(isCalledWith<&Node::setLocation, void, Node&, string>);
[[maybe_unused]] constexpr void (Node::*setHierarchicalLevel)(std::int32_t) = &Node::setHierarchicalLevel;
[[maybe_unused]] constexpr error_code_t (Node::*setGroupChildLevelGroup)(GroupLevelManager&) =
    &Node::setGroupChildLevelGroup;
[[maybe_unused]] constexpr void (Node::*dumpNode)(variant_bag_t&, string) = &Node::dump;
[[maybe_unused]] constexpr void (Node::*dumpNodeTransfer)(Table&, variant_bag_t&,
                                                          string) = &Node::dumpDataTransfer;

static_assert(isCalledWith<&Link::getDataTransferDisplayInfos, void, Link&, Table&, Infos&>);
static_assert(std::is_member_function_pointer_v<decltype(&Link::getDataTransferDisplayInfos)>, "not static");
static_assert(isCalledWith<&Link::getDisplayInfos, void, Link&, Infos&>);
static_assert(isCalledWith<&Link::getFromToBelongToTheSameGroup, std::pair<NodePtr, NodePtr>, Link&>);
static_assert(isCalledWith<&Link::getGroup, NodePtr, Link&>);
[[maybe_unused]] constexpr void (Link::*dumpLink)(variant_bag_t&, string) = &Link::dump;
[[maybe_unused]] constexpr void (Link::*dumpLinkTransfer)(Table&, variant_bag_t&,
                                                          string) = &Link::dumpDataTransfer;

[[maybe_unused]] constexpr bool (*emptyDataTransfer)(Table, string) = &LinkDisplayInfo::emptyDataTransfer;
[[maybe_unused]] constexpr bool (LinkDisplayInfo::*emptyLink)(string) const = &LinkDisplayInfo::empty;
static_assert(isCalledWith<&RowSet::empty, bool, const RowSet&>);
static_assert(isCalledWith<&DisplayInfo::dump, void, DisplayInfo&, variant_bag_t&>);
static_assert(isCalledWith<&RowSet::dump, void, RowSet&, variant_bag_t&>);
static_assert(isCalledWith<&Row::dump, void, Row&, variant_bag_t&>);
[[maybe_unused]] constexpr error_code_t (DisplayInfo::*setDataFromResult)(QueryLibrary, InputData, Progress) =
    &DisplayInfo::setDataFromResult;
[[maybe_unused]] constexpr error_code_t (*addFilterOperation)(InputData,
                                                              sptr_t<slicekit_1_0::ITableTreeQuery>,
                                                              string) = &addFilter;
[[maybe_unused]] constexpr sptr_t<qlib_1::IQuery> (*getColumnQueryOperation)(sptr_t<qlib_1::IColumnInfo>) =
    &getColumnQuery;

[[maybe_unused]] constexpr void (HierarchicalLevelManager::*addLevel)() = &HierarchicalLevelManager::addLevel;
static_assert(isCalledWith<&HierarchicalLevelManager::setLevel, error_code_t, HierarchicalLevelManager&,
                           NodePtr, std::int32_t, bool>);
static_assert(
    isCalledWith<&GroupLevelManager::setGroupLevel, void, GroupLevelManager&, string, std::int32_t>);
static_assert(
    isCalledWith<&GroupLevelManager::getGroupLevel, error_code_t, GroupLevelManager&, string, std::int32_t&>);

// ---- parser, provider, handler

static_assert(std::has_virtual_destructor_v<DViewpointParser> && makes<DViewpointParser>);
static_assert(std::is_base_of_v<DViewpointParser, DataProvider>);
[[maybe_unused]] constexpr void (DViewpointParser::*parseViewpoint)(variant_bag_t, QueryLibrary, Messenger,
                                                                    InputData, shared_ptr<Graph>&) =
    &DViewpointParser::parseViewpoint;
[[maybe_unused]] constexpr std::array<void (DViewpointParser::*)(const variant_bag_t&), 2> sections{
    &DViewpointParser::parseGraph, &DViewpointParser::parseDisplaySection};
[[maybe_unused]] constexpr void (DViewpointParser::*parseNode)(NodePtr, const variant_bag_t&) =
    &DViewpointParser::parseNode;
[[maybe_unused]] constexpr void (DViewpointParser::*parseLink)(LinkPtr, const variant_bag_t&) =
    &DViewpointParser::parseLink;
[[maybe_unused]] constexpr void (DViewpointParser::*parseDisplayInfo)(
    shared_ptr<DisplayInfo>, const variant_bag_t&) = &DViewpointParser::parseDisplayInfo;
[[maybe_unused]] constexpr void (DViewpointParser::*parseRowSet)(RowSet&, const variant_bag_t&) =
    &DViewpointParser::parseRowSet;
[[maybe_unused]] constexpr void (DViewpointParser::*parseDataTransfer)(Table&, const variant_bag_t&) =
    &DViewpointParser::parseDataTransfer;
[[maybe_unused]] constexpr string (*getAttrAndLocalize)(const variant_bag_t&, string,
                                                        bool) = &tessera_1::getAttrAndLocalize;
[[maybe_unused]] constexpr string (*getMessageFromCatalog)(const string&) = &tessera_1::getMessageFromCatalog;
[[maybe_unused]] constexpr bool (*hasAttr)(const variant_bag_t&, string) = &tessera_1::hasAttr;

[[maybe_unused]] constexpr std::unique_ptr<DataProvider> (*createProvider)(variant_bag_t&, variant_bag_t&,
                                                                           QueryLibrary, Messenger, InputData,
                                                                           Progress) = &DataProvider::create;
[[maybe_unused]] constexpr error_code_t (DataProvider::*getData)(Progress) = &DataProvider::getData;
[[maybe_unused]] constexpr std::array<error_code_t (DataProvider::*)(variant_bag_t&, Progress), 2> writers{
    &DataProvider::getMetadata, &DataProvider::refresh};
[[maybe_unused]] constexpr error_code_t (DataProvider::*changeMode)(
    const variant_bag_t&, variant_bag_t&, Progress) = &DataProvider::changeDisplayMode;

TEST(Interface, ParserAndProviderHaveTheirFieldsAndNoMore) {
    const DViewpointParser parser;
    EXPECT_EQ((endOfFields<DViewpointParser, Messenger, QueryLibrary, InputData, shared_ptr<Graph>>(
                  parser, &DViewpointParser::m_messenger, &DViewpointParser::m_library,
                  &DViewpointParser::m_result, &DViewpointParser::m_targetGraph)),
              sizeof(DViewpointParser));
    const DataProvider provider;
    EXPECT_EQ(
        (endOfFields<DataProvider, shared_ptr<Graph>, QueryLibrary, InputData>(
            provider, &DataProvider::m_graph, &DataProvider::m_queryLibrary, &DataProvider::m_inputData)),
        sizeof(DataProvider));
}

static_assert(std::is_base_of_v<panelcore_1::IRequestHandler, DiagramViewRequestHandler>);
using RequestFunction = error_code_t (DiagramViewRequestHandler::*)(const variant_bag_t&, variant_bag_t&,
                                                                    Progress);
[[maybe_unused]] constexpr std::array<RequestFunction, 3> requests{
    &DiagramViewRequestHandler::create, &DiagramViewRequestHandler::refresh,
    &DiagramViewRequestHandler::changeDisplayMode};
[[maybe_unused]] constexpr const variant_bag_t& (DiagramViewRequestHandler::*getConfig)(
    const variant_bag_t&, Progress) = &DiagramViewRequestHandler::getConfig;
[[maybe_unused]] constexpr BaseHandler (*createHandler)(
    QueryLibrary, InputData, BaseHandler, FilterMgr, Messenger) = &tessera_1::createDiagramViewRequestHandler;
[[maybe_unused]] constexpr error_code_t (panelcore_1::IRequestHandler::*handleRequest)(
    const string&, const variant_bag_t&, variant_bag_t&,
    Progress) = &panelcore_1::IRequestHandler::handleRequest;
[[maybe_unused]] constexpr void (panelcore_1::IRequestHandler::*buildTaskName)(
    const string&, const variant_bag_t&, string&) = &panelcore_1::IRequestHandler::buildTaskName;
[[maybe_unused]] constexpr string (panelcore_1::IRequestHandler::*getDomainName)() const =
    &panelcore_1::IRequestHandler::getDomainName;

// The handler's fields are private. Naming them in an explicit instantiation is allowed all the same.
template <class Tag, typename Tag::Field field>
struct Reveal {
    friend typename Tag::Field revealed(Tag) { return field; }
};
struct LibraryTag {
    using Field = QueryLibrary DiagramViewRequestHandler::*;
    friend Field revealed(LibraryTag);
};
struct InputTag {
    using Field = InputData DiagramViewRequestHandler::*;
    friend Field revealed(InputTag);
};
struct MessengerTag {
    using Field = Messenger DiagramViewRequestHandler::*;
    friend Field revealed(MessengerTag);
};
struct ProviderTag {
    using Field = std::unique_ptr<DataProvider> DiagramViewRequestHandler::*;
    friend Field revealed(ProviderTag);
};
struct BaseTag {
    using Field = BaseHandler DiagramViewRequestHandler::*;
    friend Field revealed(BaseTag);
};
struct FilterTag {
    using Field = FilterMgr DiagramViewRequestHandler::*;
    friend Field revealed(FilterTag);
};
struct ConfigTag {
    using Field = variant_bag_t DiagramViewRequestHandler::*;
    friend Field revealed(ConfigTag);
};
struct MutexTag {
    using Field = std::mutex DiagramViewRequestHandler::*;
    friend Field revealed(MutexTag);
};
template struct Reveal<LibraryTag, &DiagramViewRequestHandler::m_queryLibrary>;
template struct Reveal<InputTag, &DiagramViewRequestHandler::m_inputData>;
template struct Reveal<MessengerTag, &DiagramViewRequestHandler::m_messenger>;
template struct Reveal<ProviderTag, &DiagramViewRequestHandler::m_provider>;
template struct Reveal<BaseTag, &DiagramViewRequestHandler::m_baseHandler>;
template struct Reveal<FilterTag, &DiagramViewRequestHandler::m_filterMgr>;
template struct Reveal<ConfigTag, &DiagramViewRequestHandler::m_configBag>;
template struct Reveal<MutexTag, &DiagramViewRequestHandler::m_mutex>;

TEST(Interface, HandlerHasItsFieldsAndOneMutexAtTheEnd) {
    const DiagramViewRequestHandler handler(nullptr, nullptr, nullptr, nullptr, nullptr);
    const auto end =
        endOfFields<DiagramViewRequestHandler, QueryLibrary, InputData, Messenger,
                    std::unique_ptr<DataProvider>, BaseHandler, FilterMgr, variant_bag_t, std::mutex>(
            handler, revealed(LibraryTag()), revealed(InputTag()), revealed(MessengerTag()),
            revealed(ProviderTag()), revealed(BaseTag()), revealed(FilterTag()), revealed(ConfigTag()),
            revealed(MutexTag()));
    EXPECT_EQ(end, sizeof(DiagramViewRequestHandler));
}

// ---- what the host supplies

static_assert(sizeof(error_code_t) == 8);
static_assert(error_code_t().value() == 0 && error_code_t().succeeded());
static_assert(error_code_t::false_code().value() == 1 && error_code_t::false_code().succeeded());
static_assert(makes<variant_t, const char*> && makes<variant_t, string> && makes<variant_t, std::int32_t> &&
              makes<variant_t, std::int64_t> && makes<variant_t, bool>);
static_assert(std::is_abstract_v<qlib_1::IQueryLibrary> && std::is_abstract_v<qlib_1::IInputData> &&
              std::is_abstract_v<qlib_1::IQuery> && std::is_abstract_v<qlib_1::IVectorQuery> &&
              std::is_abstract_v<qlib_1::ITableTree> && std::is_abstract_v<qlib_1::ITableRow> &&
              std::is_abstract_v<qlib_1::IColumnInfo> && std::is_abstract_v<qlib_1::IFilterRegistry> &&
              std::is_abstract_v<relay2::IMessenger> && std::is_abstract_v<relay2::IProgress> &&
              std::is_abstract_v<panelcore_1::IFilterMgr> &&
              std::is_abstract_v<panelcore_1::IRequestHandler> &&
              std::is_abstract_v<panelcore_1::ITaskDisplacementStrategy>);
static_assert(std::is_base_of_v<qlib_1::IQuery, qlib_1::IVectorQuery>);
static_assert(qlib_1::columnIsValue == 4);
static_assert(std::same_as<decltype(basekit2::get_environ_value("x")), string>);
static_assert(
    std::same_as<decltype(slicekit_1_0::ITableTreeQuery::create()), sptr_t<slicekit_1_0::ITableTreeQuery>>);
static_assert(requires(qlib_1::IQueryLibrary & library, const variant_bag_t& bag, Messenger messenger) {
    { library.buildQuery(bag, messenger) } -> std::same_as<sptr_t<qlib_1::IQuery>>;
    { library.getQuery("x") } -> std::same_as<sptr_t<qlib_1::IQuery>>;
});
static_assert(requires(const sptr_t<qlib_1::IQuery>& query, const sptr_t<qlib_1::IVectorQuery>& vector) {
    { qlib_1::IVectorQuery::cast(query) } -> std::same_as<sptr_t<qlib_1::IVectorQuery>>;
    { qlib_1::IVectorQuery::pushBack(vector, query) } -> std::same_as<sptr_t<qlib_1::IVectorQuery>>;
});
static_assert(requires(const RTBASE_2_18::i18n::catalog_t& catalog) {
    {
        catalog.message("x").as_ustring(RTBASE_2_18::generic::varg_list())
        } -> std::same_as<RTBASE_2_18::strings::ustring8>;
});
static_assert(std::same_as<decltype(diaglog_1::log::configureComponentLogger("x")), log4cplus::Logger>);

}  // namespace
}  // namespace tessera_test
