// Making the diagrams that `render` writes.
#pragma once

#include <memory>
#include <string>

#include "cli/commands.h"
#include "cli/output_format.h"
#include "core/layout_watch.h"
#include "host/meaning/comparison.h"

namespace tessera_cli {

// The diagram in the wanted mode, without reserved space. Messages of queries go to `messages`.
[[nodiscard]] tessera_host::Expected<MadeDiagram> makeDiagram(const Options& options,
                                                              tessera_host::Pane& pane,
                                                              relay2::IMessenger& messages);

// Stops the layout when values are fetched: a comparison needs no more of a diagram.
class StopAfterValues final : public tessera_1::ILayoutWatcher {
  public:
    bool stageEnded(const tessera_1::LayoutStage& stage) override { return stage.name != "data"; }
};

// The same viewpoint on the result of --against.
class OtherDiagram {
  public:
    // Opens the result; the error's text names it. The input's own result is not used.
    [[nodiscard]] static tessera_host::Expected<std::unique_ptr<OtherDiagram>> open(const Options& options,
                                                                                    const Input& input);

    // Fetches its values. Messages have the name of the result in their texts.
    [[nodiscard]] tessera_host::Expected<void> make(relay2::IMessenger& messages);
    // REQUIRES: make() succeeded. Valid as long as this.
    [[nodiscard]] tessera_host::TaggedDiagram diagram() const { return {m_bag, *m_record}; }
    // What people call it: the last part of its address.
    [[nodiscard]] std::string name() const;

  private:
    OtherDiagram(const Options& options, Input input) : m_options(options), m_input(std::move(input)) {}

    const Options& m_options;
    const Input m_input;
    const std::shared_ptr<tessera_host::CellRecord> m_record = std::make_shared<tessera_host::CellRecord>();
    basekit2::variant_bag_t m_bag;
};

// The table of --format changes: name, value here, value there, difference, per cent; a line each, the largest change
// first.
[[nodiscard]] std::string changesTable(const std::vector<tessera_host::ChangedValue>& changes);

}  // namespace tessera_cli
