#include "cli/diagram.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <utility>

#include "cli/interrupt.h"
#include "host/document/text.h"
#include "host/engine/engine_registry.h"
#include "support/utf8.h"

namespace tessera_cli {
namespace {

using basekit2::error_code_t;
using basekit2::variant_bag_t;
using tessera_host::Error;
using tessera_host::ErrorKind;
using tessera_host::Expected;

variant_bag_t modeRequest(const std::string& mode) {
    variant_bag_t in;
    in.add_variant_bag("mode").put("", mode);
    return in;
}

// Says which of the two results a message is about.
class OtherMessages final : public relay2::IMessenger {
  public:
    OtherMessages(relay2::IMessenger& messages, std::string name)
        : m_messages(messages), m_name(std::move(name)) {}

    void post(relay2::severity_t severity, const std::string& text,
              basekit2::source_position_t position) override {
        m_messages.post(severity, text + " (in " + m_name + ")", position);
    }

  private:
    relay2::IMessenger& m_messages;
    const std::string m_name;
};

using Cells = std::array<std::string, 5>;

std::size_t widthOf(std::string_view text) {
    std::size_t width = 0;
    for (; !text.empty(); ++width)
        text.remove_prefix(tessera_support::decodeUtf8(text).length);
    return width;
}

Cells cellsOf(const tessera_host::ChangedValue& value) {
    using tessera_host::ChangeKind;
    const ChangeKind kind = value.change.kind;
    const std::string difference = kind == ChangeKind::here    ? "only here"
                                   : kind == ChangeKind::there ? "only there"
                                                               : value.change.difference;
    return {value.name, tessera_host::oneLine(value.here), tessera_host::oneLine(value.there), difference,
            value.change.percent()};
}

}  // namespace

Expected<MadeDiagram> makeDiagram(const Options& options, tessera_host::Pane& pane,
                                  relay2::IMessenger& messages) {
    const tessera_host::RequestOptions request{interruptToken(), &messages};
    MadeDiagram made;
    error_code_t code = pane.request("create", {}, made.diagram, request);
    if (code.is_success() && options.mode) {
        made.created = std::exchange(made.diagram, {});
        code = pane.request("changeDisplayMode", modeRequest(*options.mode), made.diagram, request);
    }
    if (code.is_success()) return made;
    const std::string reason = code.message().empty() ? "the reason was reported above" : code.message();
    return Error{ErrorKind::failed, fmt::format("{}: no diagram: {}", options.document, reason)};
}

Expected<std::unique_ptr<OtherDiagram>> OtherDiagram::open(const Options& options, const Input& input) {
    auto result = tessera_host::EngineRegistry::builtIn().open(options.against, {}, interruptToken());
    if (!result) return Error{result.error().kind, describe(result.error(), options.against), {}};
    return std::unique_ptr<OtherDiagram>(
        new OtherDiagram(options, {input.viewpoint, *std::move(result), input.catalogs}));
}

Expected<void> OtherDiagram::make(relay2::IMessenger& messages) {
    OtherMessages named(messages, m_options.against);
    StopAfterValues watcher;
    const auto pane = makePane(m_input, m_options, &watcher, m_record);
    auto made = makeDiagram(m_options, *pane, named);
    if (!made) return std::move(made).error();
    m_bag = std::move(made->diagram);
    return {};
}

std::string OtherDiagram::name() const {
    const std::string last = std::filesystem::path(m_options.against).filename().string();
    return tessera_host::oneLine(last.empty() ? m_options.against : last);
}

std::string changesTable(const std::vector<tessera_host::ChangedValue>& changes) {
    std::vector<Cells> lines{{"value", "here", "there", "difference", "percent"}};
    std::transform(changes.begin(), changes.end(), std::back_inserter(lines), cellsOf);
    // A cell that is much longer than others should be stands out of its column and does not widen it.
    constexpr std::size_t widestName = 80;
    constexpr std::size_t widestValue = 24;
    std::array<std::size_t, 5> widths{};
    for (const Cells& cells : lines)
        for (std::size_t i = 0; i < cells.size(); ++i)
            if (const std::size_t width = widthOf(cells[i]); width <= (i == 0 ? widestName : widestValue))
                widths[i] = std::max(widths[i], width);
    std::string table;
    for (const Cells& cells : lines) {
        std::string line;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            // Names begin at the left, numbers end at the right.
            const std::size_t width = widthOf(cells[i]);
            const std::string space(std::max(widths[i], width) - width, ' ');
            line.append(i == 0 ? "" : "  ").append(i == 0 ? cells[i] + space : space + cells[i]);
        }
        table += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return table;
}

}  // namespace tessera_cli
