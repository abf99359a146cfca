#include "host/text/json_reader.h"

#include <rapidjson/reader.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "host/text/json_events.h"
#include "host/text/text_position.h"
#include "support/utf8.h"

namespace tessera_host {
namespace {

using basekit2::variant_bag_t;

// For the stack of the parser, whose usual allocator returns null when memory is short, which the parser
// takes for memory.
class ThrowingAllocator {
  public:
    static constexpr bool kNeedFree = true;

    // The names are those that the parser calls. Throws std::bad_alloc.
    void* Malloc(std::size_t size) { return size == 0 ? nullptr : ::operator new(size); }
    void* Realloc(void* old, std::size_t oldSize, std::size_t newSize) {
        void* moved = Malloc(newSize);
        if (oldSize != 0 && moved != nullptr) std::memcpy(moved, old, std::min(oldSize, newSize));
        Free(old);
        return moved;
    }
    static void Free(void* memory) noexcept { ::operator delete(memory); }
};

using Parser = rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, ThrowingAllocator>;

// The grammar's errors in words.
std::string_view syntaxText(rapidjson::ParseErrorCode code) {
    switch (code) {
        case rapidjson::kParseErrorDocumentEmpty:
            return "an object is expected";
        case rapidjson::kParseErrorDocumentRootNotSingular:
            return "something follows the object";
        case rapidjson::kParseErrorValueInvalid:
            return "a value is expected";
        case rapidjson::kParseErrorObjectMissName:
            return "a member's name in double quotes is expected";
        case rapidjson::kParseErrorObjectMissColon:
            return "':' is expected after a member's name";
        case rapidjson::kParseErrorObjectMissCommaOrCurlyBracket:
            return "',' or '}' is expected";
        case rapidjson::kParseErrorArrayMissCommaOrSquareBracket:
            return "',' or ']' is expected";
        case rapidjson::kParseErrorStringUnicodeEscapeInvalidHex:
            return "four hexadecimal digits must follow '\\u'";
        case rapidjson::kParseErrorStringUnicodeSurrogateInvalid:
            return "half of a surrogate pair stands alone";
        case rapidjson::kParseErrorStringEscapeInvalid:
            return "a string holds a control character or a wrong escape";
        case rapidjson::kParseErrorStringMissQuotationMark:
            return "a string is not closed";
        case rapidjson::kParseErrorNumberTooBig:
            return "the number does not fit into 64 bits";
        case rapidjson::kParseErrorNumberMissFraction:
            return "a digit is expected after the decimal point";
        case rapidjson::kParseErrorNumberMissExponent:
            return "a digit is expected in the exponent";
        default:
            return "this is not JSON";
    }
}

Error errorAt(std::string_view text, std::size_t offset, std::string_view what) {
    return {ErrorKind::failed, std::string(what), TextPosition(text).at(offset)};
}

}  // namespace

Expected<variant_bag_t> readJson(std::string_view text) {
    if (const std::size_t valid = tessera_support::validUtf8Prefix(text); valid < text.size())
        return errorAt(text, valid, "this is not valid UTF-8");
    // To the parser, a NUL is the end of the text.
    if (const std::size_t nul = text.find('\0'); nul != std::string_view::npos)
        return errorAt(text, nul, "a NUL character must be written as an escape");

    // A byte order mark is skipped, but counts in positions of errors.
    const std::size_t start = text.starts_with("\xEF\xBB\xBF") ? 3 : 0;
    const std::string_view json = text.substr(start);
    rapidjson::MemoryStream stream(json.data(), json.size());
    variant_bag_t root;
    JsonEvents events(json, stream, root);
    Parser reader;
    // Iterative, because texts may nest to any depth; numbers as strings, so that 64 bits stay exact.
    const rapidjson::ParseResult result =
        reader.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseNumbersAsStringsFlag>(stream, events);

    if (!events.errorText().empty()) return errorAt(text, start + events.errorOffset(), events.errorText());
    if (result.IsError()) {
        std::string what(result.Offset() == json.size() ? "the text ends too early: " : "");
        what += syntaxText(result.Code());
        return errorAt(text, start + result.Offset(), what);
    }
    return root;
}

}  // namespace tessera_host
