// The provider that a request handler keeps.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>

#include "core/data_provider.h"
#include "core/layout_options.h"
#include "core/view_model/passes/layout_run.h"

namespace tessera_1 {

// A provider whose layout may have been cancelled. It remembers where, and finishes it before the diagram is
// written, so that a caller sees the diagram as if the layout had not been cancelled.
class PaneProvider final : public DataProvider {
  public:
    // What the stages of "create" are given. Borrowed for the call.
    struct Request {
        const basekit2::variant_bag_t* config;  // for the first stage only; null when a layout is finished
        relay2::IMessenger* messenger;
        relay2::IProgress* progress;
    };

    explicit PaneProvider(const LayoutOptions& options);

    // DataProvider::create, which describes it; but a provider whose layout was cancelled is returned too.
    [[nodiscard]] static std::unique_ptr<PaneProvider> create(
        const LayoutOptions& options, const Request& request,
        basekit2::sptr_t<qlib_1::IQueryLibrary> queryLibrary, basekit2::sptr_t<qlib_1::IInputData> inputData);

    // False when the layout was cancelled and is not finished yet.
    [[nodiscard]] bool isComplete() const;

    // Finishes the layout first. The cancellation error when that is cancelled.
    basekit2::error_code_t getMetadata(basekit2::variant_bag_t& out, relay2::IProgress* progress) override;

    [[nodiscard]] view_model::LayoutRun& layoutRun() noexcept { return m_run; }

  private:
    using Clock = std::chrono::steady_clock;

    bool runStages(const Request& request);
    bool endStage(const char* stage);

    view_model::LayoutRun m_run;
    ILayoutWatcher* const m_watcher;  // not owned; may be null
    Clock::time_point m_stageBegin;   // set only with a watcher
    std::size_t m_nextStep = 0;
};

}  // namespace tessera_1
