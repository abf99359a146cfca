#include "host/engine/engine_registry.h"

#include <algorithm>
#include <string_view>

#include "host/document/text.h"

namespace tessera_host {
namespace {

// ASCII only: the choice must not depend on the locale.
char toSmall(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string inSmallLetters(std::string_view text) {
    std::string small(text);
    std::transform(small.begin(), small.end(), small.begin(), toSmall);
    return small;
}

// The scheme of "SCHEME://...", or "". A path that begins like that can be written with "./" before it.
std::string schemeOf(std::string_view address) {
    const std::size_t end = address.find("://");
    if (end == std::string_view::npos || end == 0) return {};
    std::string scheme = inSmallLetters(address.substr(0, end));
    const bool isScheme =
        scheme.front() >= 'a' && scheme.front() <= 'z' &&
        scheme.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789+-.") == std::string::npos;
    return isScheme ? scheme : std::string();
}

bool contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

std::string EngineRegistry::descriptions() const {
    std::string text;
    for (const Engine& engine : m_engines)
        text += (text.empty() ? "" : ", ") + engine.description;
    return text;
}

// The first that applies decides: the engine's name, the scheme, the contents, the file's ending, the order.
Expected<const Engine*> EngineRegistry::choose(const std::string& address, const OpenOptions& options) const {
    const auto firstThat = [this](const auto& isRight) -> const Engine* {
        const auto found = std::find_if(m_engines.begin(), m_engines.end(), isRight);
        return found == m_engines.end() ? nullptr : &*found;
    };
    if (!options.engine.empty()) {
        if (const Engine* named = firstThat([&](const Engine& each) { return each.name == options.engine; }))
            return named;
        return Error{ErrorKind::usage, "there is no engine " + quoted(options.engine)};
    }
    if (const std::string scheme = schemeOf(address); !scheme.empty()) {
        if (const Engine* engine =
                firstThat([&](const Engine& each) { return contains(each.schemes, scheme); }))
            return engine;
        return Error{ErrorKind::cannotOpen, "there is no engine for addresses that begin with " +
                                                quoted(scheme + "://") + "; this program reads " +
                                                descriptions()};
    }
    if (const Engine* engine =
            firstThat([&](const Engine& each) { return each.recognizes && each.recognizes(address); }))
        return engine;
    const std::string path = inSmallLetters(address);
    if (const Engine* engine = firstThat([&](const Engine& each) {
            return std::any_of(each.endings.begin(), each.endings.end(),
                               [&](const std::string& ending) { return path.ends_with(ending); });
        }))
        return engine;
    if (m_engines.empty()) return Error{ErrorKind::usage, "there is no engine"};
    return &m_engines.front();
}

Expected<std::shared_ptr<IResult>> EngineRegistry::open(const std::string& address,
                                                        const OpenOptions& options,
                                                        const CancelToken& cancel) const {
    auto engine = choose(address, options);
    if (!engine) return std::move(engine).error();
    auto result = (*engine)->open(address, options, cancel);
    if (result || result.error().isCancelled()) return result;
    // Whatever went wrong, to the user the result could not be opened.
    return Error{ErrorKind::cannotOpen, result.error().text};
}

}  // namespace tessera_host
