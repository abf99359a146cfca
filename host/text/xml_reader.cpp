#include "host/text/xml_reader.h"

#include <expat.h>
#include <strings.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "host/text/file_text.h"
#include "host/text/text_position.h"
#include "host/text/xml_references.h"
#include "host/text/xml_stop.h"

namespace tessera_host {
namespace {

using basekit2::source_position_t;
using basekit2::variant_bag_t;
using tessera_support::CancelToken;

// The parser looks again at a token that a piece cuts, and counts lines at the end of each piece; so pieces
// are as large as it can take them.
constexpr std::size_t maxPiece = 512U << 20;

constexpr bool isWhite(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

void trimStart(std::string_view& text) {
    while (!text.empty() && isWhite(text.front()))
        text.remove_prefix(1);
}

// REQUIRES: not all of `text` is white.
void trimEnd(std::string_view& text) {
    while (isWhite(text.back()))
        text.remove_suffix(1);
}

class BagParser {
  public:
    BagParser(std::string_view document, variant_bag_t& root, const CancelToken& token);

    [[nodiscard]] Expected<void> parse();

  private:
    // An element whose end tag has not come yet.
    struct Element {
        variant_bag_t* bag;
        std::size_t textStart;  // of its own text in m_text
    };

    // Runs a handler of the parser, which is C, so that no exception may pass through it: parse() throws it
    // again.
    template <class Handler>
    static void handle(void* self, const Handler& handler) noexcept;
    void watchEvents();
    void startElement(const char* name, const char** attributes);
    void checkReferences();
    void endElement();
    void addText(std::string_view piece);
    void startDoctype(const char* systemId);
    void addDoctypeToken(std::string_view token);
    void declareEncoding(const char* encoding);

    void checkToken();
    void fail(Error error);
    void failHere(std::string text);
    [[nodiscard]] std::size_t currentOffset() const;
    source_position_t currentPosition();
    Error parserError();
    [[nodiscard]] std::string openElementName() const;

    std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> m_parser;
    std::string_view m_document;
    TextPosition m_position;
    XmlUnits m_units;
    variant_bag_t& m_root;
    const CancelToken& m_token;
    std::vector<Element> m_open;
    std::string m_text;  // own text of all open elements so far, the outermost first
    std::string m_rootName;
    std::string m_encoding;
    std::optional<Error> m_error;
    std::exception_ptr m_exception;  // of a handler
    bool m_isUtf8;
    bool m_hasExternalDoctype = false;
};

BagParser::BagParser(std::string_view document, variant_bag_t& root, const CancelToken& token)
    : m_parser(XML_ParserCreate(nullptr), XML_ParserFree),
      m_document(document),
      m_position(document),
      m_units(unitsOf(document)),
      m_root(root),
      m_token(token),
      m_isUtf8(m_units == XmlUnits::bytes) {
    if (!m_parser) return;
    XML_SetUserData(m_parser.get(), this);
    XML_SetParamEntityParsing(m_parser.get(), XML_PARAM_ENTITY_PARSING_NEVER);
    watchEvents();
}

template <class Handler>
void BagParser::handle(void* self, const Handler& handler) noexcept {
    auto& parser = *static_cast<BagParser*>(self);
    if (parser.m_exception) return;
    try {
        handler(parser);
    } catch (...) {
        parser.m_exception = std::current_exception();
        XML_StopParser(parser.m_parser.get(), XML_FALSE);
    }
}

void BagParser::watchEvents() {
    XML_Parser parser = m_parser.get();
    XML_SetElementHandler(
        parser,
        [](void* self, const char* name, const char** attributes) {
            handle(self, [&](BagParser& reader) { reader.startElement(name, attributes); });
        },
        [](void* self, const char*) { handle(self, [](BagParser& reader) { reader.endElement(); }); });
    XML_SetCharacterDataHandler(parser, [](void* self, const char* text, int size) {
        handle(self, [&](BagParser& reader) { reader.addText({text, static_cast<std::size_t>(size)}); });
    });
    XML_SetXmlDeclHandler(parser, [](void* self, const char*, const char* encoding, int) {
        handle(self, [&](BagParser& reader) { reader.declareEncoding(encoding); });
    });
    XML_SetStartDoctypeDeclHandler(
        parser, [](void* self, const char*, const char* systemId, const char*, int) {
            handle(self, [&](BagParser& reader) { reader.startDoctype(systemId); });
        });
    XML_SetEndDoctypeDeclHandler(parser, [](void* self) {
        XML_SetDefaultHandler(static_cast<BagParser*>(self)->m_parser.get(), nullptr);
    });
    // Called instead of an error where an external DTD might have declared the entity.
    XML_SetSkippedEntityHandler(parser, [](void* self, const char* name, int) {
        handle(self, [&](BagParser& reader) {
            reader.failHere("the entity '" + std::string(name) + "' is not known");
        });
    });
}

Expected<void> BagParser::parse() {
    if (!m_parser) return Error{ErrorKind::failed, "there is not enough memory to read it", {}};
    checkToken();
    std::size_t done = 0;
    while (done < m_document.size() && !m_error) {
        const std::string_view piece = m_document.substr(done, maxPiece);
        done += piece.size();
        const int isFinal = done == m_document.size();
        const auto status = XML_Parse(m_parser.get(), piece.data(), static_cast<int>(piece.size()), isFinal);
        if (m_exception) std::rethrow_exception(m_exception);
        if (status != XML_STATUS_OK && !m_error) m_error = parserError();
    }
    if (m_error) return *std::move(m_error);
    return {};
}

void BagParser::startElement(const char* name, const char** attributes) {
    if (m_error) return;
    if (m_open.empty()) m_rootName = name;
    variant_bag_t& bag = m_open.empty() ? m_root : m_open.back().bag->add_variant_bag(name);
    bag.set_position(currentPosition());
    // Attributes that a DTD adds come after those of the tag.
    const int count = XML_GetSpecifiedAttributeCount(m_parser.get());
    for (int i = 0; i < count; i += 2)
        bag.append_text(attributes[i], attributes[i + 1]);  // the parser refuses a name that comes twice
    m_open.push_back({&bag, m_text.size()});

    if (m_hasExternalDoctype) checkReferences();
    checkToken();
}

// Where an external DTD might declare an entity, the parser silently leaves an unknown one out of an
// attribute.
void BagParser::checkReferences() {
    const std::size_t start = currentOffset();
    const auto size = static_cast<std::size_t>(XML_GetCurrentByteCount(m_parser.get()));
    const auto unknown = unknownReference(m_document.substr(start, size), m_units);
    if (!unknown) return;
    fail({ErrorKind::failed, "the entity '" + unknown->name + "' is not known",
          m_isUtf8 ? m_position.at(start + unknown->offset) : currentPosition()});
}

void BagParser::endElement() {
    if (m_error) return;
    const Element element = m_open.back();
    m_open.pop_back();
    if (m_text.size() == element.textStart) return;
    std::string_view text = std::string_view(m_text).substr(element.textStart);
    trimEnd(text);
    element.bag->put("", text);
    m_text.resize(element.textStart);
}

void BagParser::addText(std::string_view piece) {
    if (m_error) return;
    checkToken();
    // White space before the text, above all indentation, is never stored: so no text is white space only.
    if (m_text.size() == m_open.back().textStart) trimStart(piece);
    m_text += piece;
}

// The default handler sees every token that no other handler takes, here those of the DOCTYPE.
void BagParser::startDoctype(const char* systemId) {
    m_hasExternalDoctype = systemId != nullptr;
    XML_SetDefaultHandler(m_parser.get(), [](void* self, const char* token, int size) {
        handle(self, [&](BagParser& reader) {
            reader.addDoctypeToken({token, static_cast<std::size_t>(size)});
        });
    });
}

void BagParser::addDoctypeToken(std::string_view token) {
    if (m_error) return;
    if (token == "<!ENTITY") failHere("entity declarations are not accepted");
    if (token.starts_with('%')) failHere("references to parameter entities are not accepted");
}

void BagParser::declareEncoding(const char* encoding) {
    if (!encoding) return;
    m_encoding = encoding;
    const bool isUtf8 = strcasecmp(encoding, "UTF-8") == 0 || strcasecmp(encoding, "US-ASCII") == 0;
    m_isUtf8 = m_isUtf8 && isUtf8;
}

// An error stops the parser, which may still report some events.
void BagParser::checkToken() {
    if (m_token.isCancelled()) fail(cancelledError());
}

void BagParser::fail(Error error) {
    XML_StopParser(m_parser.get(), XML_FALSE);
    m_error = std::move(error);
}

void BagParser::failHere(std::string text) {
    fail({ErrorKind::failed, std::move(text), currentPosition()});
}

std::size_t BagParser::currentOffset() const {
    const XML_Index index = XML_GetCurrentByteIndex(m_parser.get());
    return index < 0 ? 0 : std::min(static_cast<std::size_t>(index), m_document.size());
}

source_position_t BagParser::currentPosition() {
    if (m_isUtf8) return m_position.at(currentOffset());
    // The parser counts slower, but in any encoding; columns from 0, and the byte order mark is one.
    const auto line = static_cast<std::uint32_t>(XML_GetCurrentLineNumber(m_parser.get()));
    const auto column = static_cast<std::uint32_t>(XML_GetCurrentColumnNumber(m_parser.get()));
    const bool hasMark = m_document.starts_with("\xFE\xFF") || m_document.starts_with("\xFF\xFE");
    return {line, column + (line == 1 && hasMark ? 0 : 1)};
}

Error BagParser::parserError() {
    XmlStop stop{.code = XML_GetErrorCode(m_parser.get()),
                 .document = m_document,
                 .offset = currentOffset(),
                 .isUtf8 = m_isUtf8,
                 .encoding = m_encoding,
                 .openElement = {},
                 .openPosition = {}};
    if (!m_open.empty()) {
        stop.openElement = openElementName();
        stop.openPosition = m_open.back().bag->position();
    }
    stop.offset = offendingOffset(stop);
    return {ErrorKind::failed, errorText(stop), m_isUtf8 ? m_position.at(stop.offset) : currentPosition()};
}

// REQUIRES: an element is open.
std::string BagParser::openElementName() const {
    if (m_open.size() == 1) return m_rootName;
    auto child = m_open[m_open.size() - 2].bag->begin();
    while (&child.get_value() != m_open.back().bag)
        child.next();
    return std::string(child.get_name());
}

}  // namespace

Expected<variant_bag_t> readXmlText(std::string_view text, const CancelToken& token) {
    if (text.empty()) return Error{ErrorKind::failed, "the document is empty", {1, 1}};
    variant_bag_t root;
    if (auto parsed = BagParser(text, root, token).parse(); !parsed) return std::move(parsed).error();
    return root;
}

Expected<variant_bag_t> readXmlFile(const std::string& path, const CancelToken& token) {
    auto text = readFileText(path, token);
    if (!text) return std::move(text).error();
    if (text->empty()) return Error{ErrorKind::failed, "the file is empty", {1, 1}};
    return readXmlText(*text, token);
}

}  // namespace tessera_host
