#include "host/document/value_meaning.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <utility>
#include <variant>

#include "host/document/percent_encoding.h"
#include "host/document/text.h"
#include "host/values/number_text.h"

namespace tessera_host {
namespace {

using basekit2::variant_bag_t;

// Returns nothing if the attribute is missing or is not a number.
std::optional<double> numberOf(const variant_bag_t& element, std::string_view attribute) {
    const auto number = readNumber(element.get_text(attribute));
    if (!number) return std::nullopt;
    return std::visit([](auto value) { return static_cast<double>(value); }, *number);
}

std::string counted(std::size_t count, std::string_view what) {
    return std::to_string(count) + " " + std::string(what) + (count == 1 ? "" : "s");
}

}  // namespace

bool isColour(std::string_view text) noexcept {
    constexpr std::string_view digits = "0123456789abcdefABCDEF";
    return text.size() == 7 && text.front() == '#' &&
           text.substr(1).find_first_not_of(digits) == std::string_view::npos;
}

int LinkWidths::stepOf(double number) const noexcept {
    if (std::isnan(number)) return 0;
    if (number >= to) return steps;
    if (number <= from) return 1;
    // The first step that the value does not exceed, so that the legend's bounds are exact.
    int step = 1;
    while (step < steps && number > endOf(step))
        ++step;
    return step;
}

double LinkWidths::endOf(int step) const noexcept {
    // Not (to - from), which can be too large for a number.
    const double part = static_cast<double>(step) / steps;
    return from * (1 - part) + to * part;
}

// Fills a ValueMeaning.
class MeaningReader {
  public:
    MeaningReader(ValueMeaning& out, const Declarations& declarations)
        : m_out(out), m_declarations(declarations) {}

    void read(const variant_bag_t& viewpoint) {
        for (auto section = viewpoint.begin(); !section.at_end(); section.next()) {
            const variant_bag_t& element = section.get_value();
            if (section.get_name() == "widths") readWidths(element);
            if (section.get_name() != "levels") continue;
            for (auto child = element.begin(); !child.at_end(); child.next())
                if (child.get_name() == "level") readLevel(child.get_value());
        }
        sortLevels();
    }

  private:
    void readLevel(const variant_bag_t& element) {
        LevelRule rule;
        rule.position = element.position();
        const std::string what = "level " + quoted(element.get_text("name"));
        const auto* const query = queryOf(element, what);
        // Each of them reports what is wrong; all of it is reported in one run.
        bool isRight = readBound(element, what, rule);
        isRight = query && readKeys(element, what, *query, rule) && isRight;
        const auto level = levelOf(element, what);
        if (!isRight || !level) return;
        rule.query = query->index;
        rule.level = *level;
        m_out.m_rules.push_back(std::move(rule));
    }

    const QueryDeclaration* queryOf(const variant_bag_t& element, const std::string& what) {
        const std::string_view id = element.get_text("query");
        const QueryDeclaration* query = m_declarations.find(id);
        if (query == nullptr)
            report(element,
                   id.empty() ? what + " names no query" : what + ": there is no query " + quoted(id));
        return query;
    }

    bool readBound(const variant_bag_t& element, const std::string& what, LevelRule& rule) {
        const bool hasAbove = element.get("above") != nullptr;
        if (hasAbove == (element.get("below") != nullptr)) {
            report(element, what + (hasAbove ? " has both \"above\" and \"below\"; make it two levels"
                                             : " has neither \"above\" nor \"below\""));
            return false;
        }
        const char* const name = hasAbove ? "above" : "below";
        const auto bound = numberOf(element, name);
        if (!bound) report(element, what + notANumber(element, name));
        rule.isAbove = hasAbove;
        rule.bound = bound.value_or(0);
        return bound.has_value();
    }

    bool readKeys(const variant_bag_t& element, const std::string& what, const QueryDeclaration& query,
                  LevelRule& rule) {
        if (element.get("key") == nullptr) return true;
        std::vector<std::string> keys = splitAtSpaces(element.get_text("key"));
        if (keys.size() != query.keys.size() || keys.empty()) {
            report(element,
                   what + ": " +
                       (query.keys.empty() ? "query " + quoted(query.id) + " takes no key values"
                                           : "query " + quoted(query.id) + " needs " +
                                                 counted(query.keys.size(), "key value") + " but has " +
                                                 std::to_string(keys.size()) + " here"));
            return false;
        }
        for (std::string& key : keys) {
            auto value = percentDecode(key);
            if (!value) {
                report(element,
                       what + ": the key value " + quoted(key) + " is not percent-encoded correctly");
                return false;
            }
            key = *std::move(value);
        }
        rule.keys = std::move(keys);
        return true;
    }

    // The index of the level, which may be new.
    std::optional<std::size_t> levelOf(const variant_bag_t& element, const std::string& what) {
        const std::string name(element.get_text("name"));
        const std::string colour(element.get_text("colour"));
        const auto* const known = std::find(knownLevels.begin(), knownLevels.end(), name);
        const bool isOwn = known == knownLevels.end();
        if (name.empty() || isBlank(name)) return reported(element, "level without a name");
        if (!colour.empty() && !isColour(colour))
            return reported(element, what + ": the colour " + quoted(colour) + " is not \"#rrggbb\"");
        if (!isOwn && !colour.empty()) warn(element, what + " has a colour already; this one is not used");
        const auto [place, isNew] = m_indexOf.try_emplace(name, m_out.m_levels.size());
        if (!isNew) {
            const std::string& first = m_out.m_levels[place->second].colour;
            if (isOwn && !colour.empty() && colour != first)
                warn(element, what + " has the colour " + quoted(first) + " already; this one is not used");
            return place->second;
        }
        if (isOwn && (colour.empty() || m_ownLevels == ValueMeaning::maxOwnLevels)) {
            m_indexOf.erase(place);
            return reported(element, colour.empty()
                                         ? what + " needs a colour, such as \"#8A4FBF\"; only " +
                                               listed(knownLevels, " and ", quoted) + " have one"
                                         : what + " is one too many: a document has at most " +
                                               counted(ValueMeaning::maxOwnLevels, "level") + " of its own");
        }
        m_ownLevels += isOwn ? 1 : 0;
        m_out.m_levels.push_back({name, isOwn ? colour : std::string(), 0});
        return place->second;
    }

    // By rank; the rules then mean the new places.
    void sortLevels() {
        const auto weight = [](const Level& level) {
            const auto* const known = std::find(knownLevels.begin(), knownLevels.end(), level.name);
            constexpr std::size_t own = 2;  // between warning and good
            const auto place = static_cast<std::size_t>(known - knownLevels.begin());
            return place < own ? place : known == knownLevels.end() ? own : own + 1;
        };
        std::vector<Level> sorted = m_out.m_levels;
        std::stable_sort(sorted.begin(), sorted.end(),
                         [&](const Level& a, const Level& b) { return weight(a) < weight(b); });
        std::unordered_map<std::string_view, std::size_t> placeOf;
        for (std::size_t i = 0; i < sorted.size(); ++i) {
            sorted[i].rank = i;
            placeOf.emplace(sorted[i].name, i);
        }
        for (LevelRule& rule : m_out.m_rules)
            rule.level = placeOf.at(m_out.m_levels[rule.level].name);
        m_out.m_levels.swap(sorted);
    }

    void readWidths(const variant_bag_t& element) {
        constexpr const char* what = "<widths>";
        if (m_widthsPosition.line > 0)
            warn(element, "these <widths> replace those of line " + std::to_string(m_widthsPosition.line));
        m_widthsPosition = element.position();
        const QueryDeclaration* query = queryOf(element, what);
        const auto from = numberOf(element, "from");
        const auto to = numberOf(element, "to");
        if (!from) report(element, what + notANumber(element, "from"));
        if (!to) report(element, what + notANumber(element, "to"));
        const bool isRange = from && to && *from < *to;
        if (from && to && !isRange) report(element, "<widths>: \"from\" must be less than \"to\"");
        m_out.m_widths.reset();
        if (query != nullptr && isRange) m_out.m_widths = LinkWidths{query->index, *from, *to};
    }

    static std::string notANumber(const variant_bag_t& element, const char* attribute) {
        if (element.get(attribute) == nullptr) return " has no " + quoted(attribute);
        return ": " + quoted(attribute) + " is " + quoted(element.get_text(attribute)) +
               ", which is not a number";
    }

    void report(const variant_bag_t& element, std::string text) {
        m_out.m_problems.push_back({element.position(), std::move(text)});
    }
    std::nullopt_t reported(const variant_bag_t& element, std::string text) {
        report(element, std::move(text));
        return std::nullopt;
    }
    void warn(const variant_bag_t& element, std::string text) {
        m_out.m_problems.push_back({element.position(), std::move(text), relay2::severity_t::warning});
    }

    ValueMeaning& m_out;
    const Declarations& m_declarations;
    std::unordered_map<std::string, std::size_t> m_indexOf;  // levels by name
    std::size_t m_ownLevels = 0;
    basekit2::source_position_t m_widthsPosition;
};

ValueMeaning::ValueMeaning(const variant_bag_t& viewpoint, const Declarations& declarations) {
    MeaningReader(*this, declarations).read(viewpoint);
}

const Level* ValueMeaning::findLevel(std::string_view name) const noexcept {
    const auto found = std::find_if(m_levels.begin(), m_levels.end(),
                                    [&](const Level& level) { return level.name == name; });
    return found == m_levels.end() ? nullptr : &*found;
}

}  // namespace tessera_host
