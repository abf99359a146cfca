// Which names XML elements and attributes can have.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <string_view>

struct XML_ParserStruct;

namespace tessera_host {

// Follows the parser's own rules, so that whatever it reads can be written and the other way round.
// Remembers what it found out about names beyond ASCII.
class XmlNames {
  public:
    XmlNames();
    ~XmlNames();

    bool isName(std::string_view text);

  private:
    bool parserAccepts(const std::string& name);

    std::unique_ptr<XML_ParserStruct, void (*)(XML_ParserStruct*)> m_parser;
    std::set<std::string, std::less<>> m_accepted;
};

}  // namespace tessera_host
