#include "host/document/declarations.h"

#include <algorithm>
#include <utility>

#include "host/document/percent_encoding.h"
#include "host/document/text.h"

namespace tessera_host {
namespace {

using basekit2::variant_bag_t;

std::string join(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text.append(text.empty() ? "" : ", ").append(word);
    return oneLine(text);
}

// Calls `visit` with every child `inner` of every child `outer` of `root`.
template <class Visit>
void forEach(const variant_bag_t& root, std::string_view outer, std::string_view inner, Visit visit) {
    for (auto section = root.begin(); !section.at_end(); section.next()) {
        if (section.get_name() != outer) continue;
        for (auto child = section.get_value().begin(); !child.at_end(); child.next())
            if (child.get_name() == inner) visit(child.get_value());
    }
}

std::string countReason(const QueryDeclaration& declaration, std::size_t given) {
    const std::size_t needed = declaration.keys.size();
    const std::string name = "query " + quoted(declaration.id);
    if (needed == 0) return name + " takes no key values but has " + std::to_string(given) + " here";
    return name + " needs " + std::to_string(needed) + (needed == 1 ? " key value (" : " key values (") +
           join(declaration.keys) + ") but has " + std::to_string(given) + " here";
}

Error failure(std::string text) {
    return {ErrorKind::failed, std::move(text), {}};
}

// The values in "/KEY/KEY".
Expected<std::vector<std::string>> decodeKeys(std::string_view segments) {
    std::vector<std::string> keys;
    while (!segments.empty()) {
        // Every segment begins with its "/".
        segments.remove_prefix(1);
        const std::size_t end = std::min(segments.find('/'), segments.size());
        const std::string_view segment = segments.substr(0, end);
        std::optional<std::string> value = percentDecode(segment);
        if (!value) return failure("the key value " + quoted(segment) + " is not percent-encoded correctly");
        keys.push_back(std::move(*value));
        segments.remove_prefix(end);
    }
    return keys;
}

}  // namespace

std::shared_ptr<const Declarations> Declarations::read(const variant_bag_t& viewpoint) {
    const std::shared_ptr<Declarations> declarations(new Declarations);
    forEach(viewpoint, "queries", "query", [&](const variant_bag_t& each) { declarations->readQuery(each); });
    forEach(viewpoint, "filters", "filter",
            [&](const variant_bag_t& each) { declarations->readFilter(each); });
    declarations->buildIndex();
    return declarations;
}

void Declarations::readQuery(const variant_bag_t& element) {
    QueryDeclaration query;
    query.id = element.get_text("id");
    if (query.id.empty()) {
        report(element, "query without an id");
        return;
    }
    // The index is the position in m_queries; a query that is left out has none.
    query.index = m_queries.size();
    query.from = element.get_text("from");
    query.expression = element.get_text("");
    query.where = element.get_text("where");
    query.keys = splitAtSpaces(element.get_text("key"));
    query.unit = element.get_text("unit");
    query.position = element.position();
    const std::string_view format = element.get_text("format");
    // With an unknown format the query stays usable: its values are shown as plain ones.
    if (const auto parsed = CellFormat::parse(format))
        query.format = *parsed;
    else
        report(element, "query " + quoted(query.id) + " has the unknown format " + quoted(format));
    if (!query.keys.empty() && query.id.find('/') != std::string::npos)
        report(element, "query " + quoted(query.id) + " has keys, so its id may have no \"/\"");
    m_queries.push_back(std::move(query));
}

void Declarations::readFilter(const variant_bag_t& element) {
    const std::string name(element.get_text("name"));
    if (name.empty())
        report(element, "filter without a name");
    else
        setFilter(m_filters, name, {std::string(element.get_text("")), element.position()});
}

// Only when all queries are read, because the keys view the ids in m_queries. Of equal ids the last counts.
void Declarations::buildIndex() {
    m_byId.reserve(m_queries.size());
    for (const QueryDeclaration& query : m_queries)
        m_byId.insert_or_assign(query.id, query.index);
}

void Declarations::report(const variant_bag_t& element, std::string text) {
    m_problems.push_back({element.position(), std::move(text)});
}

const QueryDeclaration* Declarations::find(std::string_view id) const {
    const auto it = m_byId.find(id);
    return it == m_byId.end() ? nullptr : &m_queries[it->second];
}

Expected<Reference> Declarations::parseReference(std::string_view text) const {
    if (text.empty() || text.front() != '/') return failure("it does not begin with \"/\"");
    text.remove_prefix(1);
    // The id of a query without keys may contain "/", so the whole text is tried first.
    if (const QueryDeclaration* whole = find(text); whole && whole->keys.empty()) return Reference{whole, {}};

    const std::size_t idEnd = std::min(text.find('/'), text.size());
    const QueryDeclaration* declaration = find(text.substr(0, idEnd));
    if (declaration == nullptr) return failure("there is no query " + quoted(text.substr(0, idEnd)));
    const std::string_view segments = text.substr(idEnd);
    // Each key value begins with "/"; one inside a value is percent-encoded.
    const auto given = static_cast<std::size_t>(std::count(segments.begin(), segments.end(), '/'));
    if (given != declaration->keys.size()) return failure(countReason(*declaration, given));
    auto keys = decodeKeys(segments);
    if (!keys) return std::move(keys).error();
    return Reference{declaration, *std::move(keys)};
}

}  // namespace tessera_host
