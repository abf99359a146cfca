#include "host/text/xml_writer.h"

#include <array>
#include <charconv>
#include <optional>
#include <string>
#include <vector>

#include "host/text/indentation.h"
#include "host/text/xml_names.h"
#include "support/utf8.h"
#include "support/xml_escape.h"

namespace tessera_host {
namespace {

using basekit2::variant_bag_t;
using basekit2::variant_t;
using tessera_support::XmlPlace;

class ElementWriter {
  public:
    explicit ElementWriter(TextSink& sink) : m_sink(sink) {}

    Expected<void> write(const variant_bag_t& root, std::string_view rootName);

  private:
    // An element whose children are being written.
    struct Level {
        std::string_view name;
        variant_bag_t::iterator_t next;
        bool isMixed;  // it or one of those around it has text: no white space may be added
    };

    void openElement(std::string_view name, const variant_bag_t& bag);
    void closeElement();
    bool writeAttributes(const variant_bag_t& bag);
    void writeValue(const variant_t& value, XmlPlace place);
    bool checkName(std::string_view name, const char* what);

    TextSink& m_sink;
    XmlNames m_names;
    std::vector<Level> m_levels;
    std::optional<Error> m_error;
};

// The element's own text, or null.
const variant_t* ownText(const variant_bag_t& bag) {
    const variant_t* text = bag.get("");
    // An empty text counts as none, so that the element can be written as "<name/>".
    const bool isNothing = !text || text->type() == variant_t::type_t::none ||
                           (text->can_get<std::string_view>() && text->get<std::string_view>().empty());
    return isNothing ? nullptr : text;
}

Expected<void> ElementWriter::write(const variant_bag_t& root, std::string_view rootName) {
    m_sink.write(R"(<?xml version="1.0" encoding="UTF-8"?>)");
    beginLine(m_sink, m_levels.size());
    openElement(rootName, root);
    // m_levels instead of recursion: bags may nest to any depth.
    while (!m_levels.empty() && !m_error && m_sink.good()) {
        Level& level = m_levels.back();
        if (level.next.at_end()) {
            closeElement();
            continue;
        }
        const std::string_view name = level.next.get_name();
        const variant_bag_t& child = level.next.get_value();
        level.next.next();
        if (!level.isMixed) beginLine(m_sink, m_levels.size());
        openElement(name, child);
    }
    m_sink.put('\n');
    if (m_error) return *m_error;
    return {};
}

void ElementWriter::openElement(std::string_view name, const variant_bag_t& bag) {
    if (!checkName(name, "element")) return;
    m_sink.put('<');
    m_sink.write(name);
    if (!writeAttributes(bag)) return;

    const variant_t* text = ownText(bag);
    // Closed at once; the element needs no level.
    if (!text && bag.begin().at_end()) {
        m_sink.write("/>");
        return;
    }
    m_sink.put('>');
    if (text) writeValue(*text, XmlPlace::text);
    const bool isMixed = text || (!m_levels.empty() && m_levels.back().isMixed);
    m_levels.push_back({name, bag.begin(), isMixed});
}

void ElementWriter::closeElement() {
    const Level level = m_levels.back();
    m_levels.pop_back();
    if (!level.isMixed) beginLine(m_sink, m_levels.size());
    m_sink.write("</");
    m_sink.write(level.name);
    m_sink.put('>');
}

bool ElementWriter::writeAttributes(const variant_bag_t& bag) {
    for (auto it = bag.begin_values(); !it.at_end(); it.next()) {
        const std::string_view name = it.get_name();
        // The value without a name is the element's text, not an attribute.
        if (name.empty()) continue;
        if (!checkName(name, "attribute")) return false;
        m_sink.put(' ');
        m_sink.write(name);
        m_sink.write("=\"");
        writeValue(it.get_value(), XmlPlace::attribute);
        m_sink.put('"');
    }
    return true;
}

void ElementWriter::writeValue(const variant_t& value, XmlPlace place) {
    switch (value.type()) {
        case variant_t::type_t::string:
            tessera_support::writeXmlEscaped(value.get<std::string_view>(), place,
                                             [this](std::string_view piece) { m_sink.write(piece); });
            break;
        case variant_t::type_t::integer: {
            std::array<char, 20> digits{};  // the longest is -9223372036854775808
            const auto number = value.get<std::int64_t>();
            const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
            m_sink.write({digits.data(), static_cast<std::size_t>(end - digits.data())});
            break;
        }
        case variant_t::type_t::boolean:
            m_sink.write(value.get<bool>() ? "true" : "false");
            break;
        case variant_t::type_t::none:
            break;
    }
}

// Names of bags may be any text, those of XML may not. The error ends write().
bool ElementWriter::checkName(std::string_view name, const char* what) {
    if (m_names.isName(name)) return true;
    m_error = Error{ErrorKind::failed,
                    '\'' + tessera_support::repairUtf8(name) + "' cannot be the name of an XML " + what,
                    {}};
    return false;
}

}  // namespace

Expected<void> writeXml(const variant_bag_t& bag, TextSink& sink, std::string_view rootName) {
    auto written = ElementWriter(sink).write(bag, rootName);
    sink.flush();
    return written;
}

}  // namespace tessera_host
