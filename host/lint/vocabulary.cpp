#include "host/lint/vocabulary.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <vector>

#include "host/document/display_mode.h"
#include "host/document/text.h"

namespace tessera_host {
namespace {

using basekit2::variant_bag_t;
using tessera_support::CancelToken;

struct ElementRule;

// A name that a child element may have, and the rule for it.
struct ChildRule {
    std::string_view name;
    const ElementRule* element;
};

struct ElementRule {
    std::string_view what;  // how messages name it
    std::span<const std::string_view> attributes;
    std::span<const ChildRule> children;
    bool hasText = false;
};

// The values of an attribute that mean something; where they are fewer than four, the last is repeated.
struct ValueRule {
    std::string_view attribute;
    std::string_view what;
    std::array<std::string_view, 4> values;
};

using namespace std::string_view_literals;

// From the leaves up. "node" below "graph" is the only element that nests in itself.
constexpr std::array queryRefAttributes{"displayName"sv};
constexpr ElementRule queryRef{"<queryRef>", queryRefAttributes, {}, true};
constexpr std::array rowSetChildren{ChildRule{"queryRef", &queryRef}};
constexpr ElementRule rowSet{"<rowSet>", queryRefAttributes, rowSetChildren};
constexpr std::array shownChildren{ChildRule{"rowSet", &rowSet}};
constexpr ElementRule displayMode{"a display mode", {}, shownChildren};
constexpr std::array transferChildren = [] {
    std::array<ChildRule, displayModeNames.size()> rules{};
    for (std::size_t i = 0; i < rules.size(); ++i)
        rules[i] = {displayModeNames[i], &displayMode};
    return rules;
}();
constexpr ElementRule dataTransfer{"<dataTransfer>", queryRefAttributes, transferChildren};
constexpr std::array labelAttributes{"location"sv};
constexpr std::array labelChildren{ChildRule{"dataTransfer", &dataTransfer}};
constexpr ElementRule label{"<label>", labelAttributes, labelChildren};
constexpr std::array displayLinkAttributes{"id"sv, "displayName"sv};
constexpr std::array displayLinkChildren{ChildRule{"label", &label}};
constexpr ElementRule displayLink{"a display <link>", displayLinkAttributes, displayLinkChildren};
constexpr std::array displayNodeAttributes{"id"sv, "displayName"sv, "type"sv, "aligning"sv};
constexpr ElementRule displayNode{"a display <node>", displayNodeAttributes, shownChildren};
constexpr ElementRule displayGraph{"the display <graph>", displayLinkAttributes, {}};
constexpr std::array displayChildren{ChildRule{"graph", &displayGraph}, ChildRule{"node", &displayNode},
                                     ChildRule{"link", &displayLink}};
constexpr ElementRule display{"<display>", {}, displayChildren};
constexpr std::array idAttributes{"id"sv};
constexpr std::array linkAttributes{"id"sv, "from"sv, "to"sv, "direction"sv};
constexpr ElementRule link{"<link>", linkAttributes, {}};
// Declared before its children, which refer to it.
extern const ElementRule node;
constexpr std::array nodeChildren{ChildRule{"node", &node}};
constexpr ElementRule node{"<node>", idAttributes, nodeChildren};
constexpr std::array graphChildren{ChildRule{"node", &node}, ChildRule{"link", &link}};
constexpr ElementRule graph{"<graph>", idAttributes, graphChildren};
constexpr std::array diagramChildren{ChildRule{"graph", &graph}, ChildRule{"display", &display}};
constexpr ElementRule diagram{"<diagram>", {}, diagramChildren};
constexpr std::array filterAttributes{"name"sv};
constexpr ElementRule filter{"<filter>", filterAttributes, {}, true};
constexpr std::array filtersChildren{ChildRule{"filter", &filter}};
constexpr ElementRule filters{"<filters>", {}, filtersChildren};
constexpr std::array queryAttributes{"id"sv, "from"sv, "where"sv, "key"sv, "format"sv, "unit"sv};
constexpr ElementRule query{"<query>", queryAttributes, {}, true};
constexpr std::array queriesChildren{ChildRule{"query", &query}};
constexpr ElementRule queries{"<queries>", {}, queriesChildren};
constexpr std::array levelAttributes{"name"sv, "query"sv, "key"sv, "above"sv, "below"sv, "colour"sv};
constexpr ElementRule level{"<level>", levelAttributes, {}};
constexpr std::array levelsChildren{ChildRule{"level", &level}};
constexpr ElementRule levels{"<levels>", {}, levelsChildren};
constexpr std::array widthsAttributes{"query"sv, "from"sv, "to"sv};
constexpr ElementRule widths{"<widths>", widthsAttributes, {}};
constexpr std::array rootChildren{ChildRule{"queries", &queries}, ChildRule{"filters", &filters},
                                  ChildRule{"levels", &levels}, ChildRule{"widths", &widths},
                                  ChildRule{"diagram", &diagram}};
constexpr ElementRule root{"the document", {}, rootChildren};

// Found by the address of the rule, so <link> and the display <link> are kept apart.
constexpr std::array valueRules{
    std::pair{&link,
              ValueRule{"direction", "is kept but means nothing", {"forward", "back", "both", "none"}}},
    std::pair{&label, ValueRule{"location", "is read as \"center\"", {"from", "to", "center", "center"}}},
    std::pair{&displayNode,
              ValueRule{"aligning", "is kept but means nothing", {"from", "to", "none", "none"}}},
};

std::string listOf(std::span<const ChildRule> children) {
    std::string text;
    for (const ChildRule& child : children) {
        if (!text.empty()) text += ", ";
        text.append("<").append(child.name).append(">");
    }
    return text;
}

std::string listOf(std::span<const std::string_view> names) {
    std::string text;
    for (const std::string_view name : names) {
        if (!text.empty()) text += ", ";
        text.append("\"").append(name).append("\"");
    }
    return text;
}

void checkValues(const variant_bag_t& bag, const ElementRule& rule, ProblemList& problems) {
    for (const auto& [element, values] : valueRules) {
        if (element != &rule) continue;
        const basekit2::variant_t* value = bag.get(values.attribute);
        if (value == nullptr) continue;
        const auto text = value->get<std::string_view>();
        // An empty value counts as not given.
        if (text.empty() ||
            std::find(values.values.begin(), values.values.end(), text) != values.values.end())
            continue;
        problems.warning(bag.position(),
                         std::string(values.attribute) + " " + quoted(text) + " " + std::string(values.what));
    }
}

void checkAttributes(const variant_bag_t& bag, const ElementRule& rule, ProblemList& problems,
                     const CancelToken& token) {
    for (auto value = bag.begin_values(); !value.at_end() && !token.isCancelled(); value.next()) {
        const std::string name(value.get_name());
        // The value without a name is the element's text.
        if (name.empty()) {
            if (!rule.hasText)
                problems.warning(bag.position(), "the text of " + std::string(rule.what) + " is not read");
        } else if (std::find(rule.attributes.begin(), rule.attributes.end(), name) == rule.attributes.end()) {
            problems.warning(
                bag.position(),
                "unknown attribute " + quoted(name) + " of " + std::string(rule.what) +
                    (rule.attributes.empty() ? "; it has none" : "; it has " + listOf(rule.attributes)));
        }
    }
    checkValues(bag, rule, problems);
}

// Other hosts may keep elements of their own beside the diagram, so unknown ones are only a warning there.
void reportUnknown(std::string_view name, const variant_bag_t& bag, const ElementRule& parent,
                   ProblemList& problems) {
    const std::string text =
        "unknown element <" + oneLine(name) + "> in " + std::string(parent.what) +
        (parent.children.empty() ? "; nothing is expected there" : "; expected " + listOf(parent.children));
    if (&parent == &root)
        problems.warning(bag.position(), text);
    else
        problems.error(bag.position(), text);
}

}  // namespace

void checkVocabulary(const variant_bag_t& viewpoint, ProblemList& problems, const CancelToken& token) {
    struct Open {
        const variant_bag_t* bag;
        const ElementRule* rule;
    };
    // A stack of its own instead of recursion: documents may nest to any depth.
    std::vector<Open> open{{&viewpoint, &root}};
    while (!open.empty()) {
        const Open element = open.back();
        open.pop_back();
        checkAttributes(*element.bag, *element.rule, problems, token);
        for (auto child = element.bag->begin(); !child.at_end(); child.next()) {
            if (token.isCancelled()) return;
            const auto& children = element.rule->children;
            // Rules have few children, so a search from the first costs less than a map.
            const auto it = std::find_if(children.begin(), children.end(), [&](const ChildRule& rule) {
                return rule.name == child.get_name();
            });
            if (it != children.end())
                open.push_back({&child.get_value(), it->element});
            else
                reportUnknown(child.get_name(), child.get_value(), *element.rule, problems);
        }
    }
}

}  // namespace tessera_host
