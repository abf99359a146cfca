// The tokens of a JSON text, with commas, line ends and indentation put where they belong.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "host/text/json_writer.h"
#include "host/text/text_sink.h"

namespace tessera_host {

// The caller sees to the grammar: in an object one value follows each key(), in an array each element().
class JsonText {
  public:
    JsonText(TextSink& sink, JsonForm form) : m_sink(sink), m_isIndented(form == JsonForm::indented) {}

    // Opens an object or an array; `bracket` is '{' or '['.
    void open(char bracket);
    // Closes the innermost one; `bracket` is the matching '}' or ']'.
    void close(char bracket);

    void key(std::string_view name);
    void element() { beginItem(); }

    void string(std::string_view text);
    void integer(std::int64_t number);
    void literal(std::string_view word) { m_sink.write(word); }

  private:
    void beginItem();
    void escape(char c);

    TextSink& m_sink;
    std::size_t m_depth = 0;
    bool m_isIndented;
    bool m_isFirst = true;  // nothing stands in the innermost object or array yet
};

}  // namespace tessera_host
