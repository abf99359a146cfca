#include "cli/fail_on.h"

#include <fmt/format.h>

#include "cli/message.h"
#include "host/document/text.h"

namespace tessera_cli {
namespace {

using tessera_host::Error;
using tessera_host::ErrorKind;
using tessera_host::Level;

std::string countsOf(const tessera_host::ValueMeaning& meaning, const tessera_host::LevelSummary& summary,
                     std::size_t worstRanks) {
    std::string text;
    for (const Level& level : meaning.levels())
        if (level.rank <= worstRanks && summary.counts[level.rank] > 0)
            text += fmt::format("{}{} {}", text.empty() ? "" : ", ", summary.counts[level.rank],
                                tessera_host::oneLine(level.name));
    return text;
}

}  // namespace

tessera_host::Expected<void> checkFailOn(const Options& options, const tessera_host::Viewpoint& viewpoint) {
    const tessera_host::ValueMeaning& meaning = viewpoint.meaning();
    if (options.failOn.empty() || meaning.findLevel(options.failOn) != nullptr) return {};
    const std::string levels = tessera_host::listed(
        meaning.levels(), " and ", [](const Level& level) { return tessera_host::quoted(level.name); });
    return Error{ErrorKind::usage,
                 fmt::format("--fail-on {}: {} has no such level; {}", tessera_host::oneLine(options.failOn),
                             options.document, levels.empty() ? "it has none" : "it has " + levels)};
}

bool failsOn(const Options& options, const tessera_host::Viewpoint& viewpoint,
             const tessera_host::LevelSummary& summary) {
    const tessera_host::ValueMeaning& meaning = viewpoint.meaning();
    const Level* level = options.failOn.empty() ? nullptr : meaning.findLevel(options.failOn);
    if (level == nullptr || summary.countUpTo(level->rank) == 0) return false;
    // There is a worst value, because at least one is counted.
    const auto& [reference, text, number] = *summary.worst;
    const tessera_host::LevelRule& rule = *summary.worstRule;
    printMessage(fmt::format("{}: {}; the worst is /{}: {} ({} {})", options.document,
                             countsOf(meaning, summary, level->rank),
                             tessera_host::oneLine(reference->identifier()), tessera_host::oneLine(text),
                             rule.isAbove ? "above" : "below", rule.bound));
    return true;
}

}  // namespace tessera_cli
