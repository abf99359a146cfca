#include "host/document/viewpoint.h"

#include <utility>

#include "host/text/xml_reader.h"

namespace tessera_host {

using basekit2::variant_bag_t;
using tessera_support::CancelToken;

namespace {

// The readers of text still take a progress sink.
class TokenProgress final : public relay2::IProgress {
  public:
    explicit TokenProgress(const CancelToken& token) : m_token(token) {}
    [[nodiscard]] bool isCancelled() const override { return m_token.isCancelled(); }

  private:
    const CancelToken& m_token;
};

Error errorOf(const ReadError& error) {
    const ErrorKind kind = error.cancelled  ? ErrorKind::cancelled
                           : error.unopened ? ErrorKind::cannotOpen
                                            : ErrorKind::failed;
    return {kind, error.text, error.position};
}

}  // namespace

Viewpoint::Viewpoint(Private /*only from here*/, variant_bag_t bag, std::string name,
                     const CancelToken& token)
    : m_bag(std::move(bag)),
      m_name(std::move(name)),
      m_structure(m_bag, token),
      m_declarations(Declarations::read(m_bag)) {}

Expected<Viewpoint::Pointer> Viewpoint::fromBag(variant_bag_t bag, std::string name,
                                                const CancelToken& token) {
    Pointer viewpoint = std::make_shared<const Viewpoint>(Private{}, std::move(bag), std::move(name), token);
    if (token.isCancelled()) return cancelledError();
    return viewpoint;
}

Expected<Viewpoint::Pointer> Viewpoint::readText(std::string_view text, std::string name,
                                                 const CancelToken& token) {
    variant_bag_t bag;
    TokenProgress progress(token);
    if (const auto error = readXmlText(text, bag, &progress)) return errorOf(*error);
    return fromBag(std::move(bag), std::move(name), token);
}

Expected<Viewpoint::Pointer> Viewpoint::readFile(const std::string& path, const CancelToken& token) {
    variant_bag_t bag;
    TokenProgress progress(token);
    if (const auto error = readXmlFile(path, bag, &progress)) return errorOf(*error);
    return fromBag(std::move(bag), path, token);
}

}  // namespace tessera_host
