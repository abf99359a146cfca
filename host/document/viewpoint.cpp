#include "host/document/viewpoint.h"

#include <utility>

#include "host/text/xml_reader.h"

namespace tessera_host {

using basekit2::variant_bag_t;
using tessera_support::CancelToken;

namespace {

std::vector<Problem> joined(std::vector<Problem> first, const std::vector<Problem>& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

}  // namespace

Viewpoint::Viewpoint(Private /*only from here*/, variant_bag_t bag, std::string name,
                     const CancelToken& token)
    : m_bag(std::move(bag)),
      m_name(std::move(name)),
      m_structure(m_bag, token),
      m_declarations(Declarations::read(m_bag)),
      m_meaning(m_bag, *m_declarations),
      m_problems(joined(m_declarations->problems(), m_meaning.problems())) {}

Expected<Viewpoint::Pointer> Viewpoint::fromBag(variant_bag_t bag, std::string name,
                                                const CancelToken& token) {
    Pointer viewpoint = std::make_shared<const Viewpoint>(Private{}, std::move(bag), std::move(name), token);
    if (token.isCancelled()) return cancelledError();
    return viewpoint;
}

Expected<Viewpoint::Pointer> Viewpoint::readText(std::string_view text, std::string name,
                                                 const CancelToken& token) {
    auto bag = readXmlText(text, token);
    if (!bag) return std::move(bag).error();
    return fromBag(*std::move(bag), std::move(name), token);
}

Expected<Viewpoint::Pointer> Viewpoint::readFile(const std::string& path, const CancelToken& token) {
    auto bag = readXmlFile(path, token);
    if (!bag) return std::move(bag).error();
    return fromBag(*std::move(bag), path, token);
}

}  // namespace tessera_host
