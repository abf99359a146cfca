#include "core/diagram_request_handler.h"

#include <utility>

#include "core/check.h"
#include "core/pane_provider.h"

namespace tessera_1 {

TESSERA_SOURCE_UNIT("core/diagram_request_handler");

using basekit2::error_code_t;
using basekit2::variant_bag_t;

namespace {

// A handler that was made with options.
class ConfiguredRequestHandler final : public DiagramViewRequestHandler {
  public:
    template <class... Args>
    explicit ConfiguredRequestHandler(const LayoutOptions& options, Args&&... args)
        : DiagramViewRequestHandler(std::forward<Args>(args)...), m_options(options) {}

  private:
    [[nodiscard]] LayoutOptions layoutOptions() const override { return m_options; }

    const LayoutOptions m_options;
};

}  // namespace

std::shared_ptr<panelcore_1::IRequestHandler> createDiagramViewRequestHandler(
    basekit2::sptr_t<qlib_1::IQueryLibrary> queryLibrary, basekit2::sptr_t<qlib_1::IInputData> inputData,
    std::shared_ptr<panelcore_1::IRequestHandler> baseHandler,
    std::shared_ptr<panelcore_1::IFilterMgr> filterMgr, relay2::IMessenger* messenger) {
    return std::make_shared<DiagramViewRequestHandler>(std::move(queryLibrary), std::move(inputData),
                                                       std::move(baseHandler), std::move(filterMgr),
                                                       messenger);
}

std::shared_ptr<panelcore_1::IRequestHandler> createDiagramViewRequestHandlerWithOptions(
    basekit2::sptr_t<qlib_1::IQueryLibrary> queryLibrary, basekit2::sptr_t<qlib_1::IInputData> inputData,
    std::shared_ptr<panelcore_1::IRequestHandler> baseHandler,
    std::shared_ptr<panelcore_1::IFilterMgr> filterMgr, relay2::IMessenger* messenger,
    const LayoutOptions& options) {
    return std::make_shared<ConfiguredRequestHandler>(options, std::move(queryLibrary), std::move(inputData),
                                                      std::move(baseHandler), std::move(filterMgr),
                                                      messenger);
}

DiagramViewRequestHandler::DiagramViewRequestHandler(
    basekit2::sptr_t<qlib_1::IQueryLibrary> queryLibrary, basekit2::sptr_t<qlib_1::IInputData> inputData,
    std::shared_ptr<panelcore_1::IRequestHandler> baseHandler,
    std::shared_ptr<panelcore_1::IFilterMgr> filterMgr, relay2::IMessenger* messenger)
    : m_queryLibrary(std::move(queryLibrary)),
      m_inputData(std::move(inputData)),
      m_messenger(messenger),
      m_baseHandler(std::move(baseHandler)),
      m_filterMgr(std::move(filterMgr)) {}

std::string DiagramViewRequestHandler::getDomainName() const {
    return "diagramView";
}

error_code_t DiagramViewRequestHandler::handleRequest(const std::string& name, const variant_bag_t& in,
                                                      variant_bag_t& out, relay2::IProgress* progress) {
    if (name == "create") return create(in, out, progress);
    if (name == "refresh") return refresh(in, out, progress);
    if (name == "changeDisplayMode") return changeDisplayMode(in, out, progress);
    return TESSERA_RAISE(bk2::error::FailedTo(RTBASE_2_18::strings::ustring8(name)));
}

const variant_bag_t& DiagramViewRequestHandler::getConfig(const variant_bag_t& in,
                                                          relay2::IProgress* progress) {
    static const variant_bag_t noConfig;  // m_configBag itself may be filled at any moment
    if (!hasConfig() && m_baseHandler) {
        variant_bag_t fetched;
        (void)m_baseHandler->handleRequest("config", in, fetched, progress);  // create() tests what came
        if (!fetched.is_empty()) keepConfig(std::move(fetched));
    }
    return hasConfig() ? m_configBag : noConfig;
}

bool DiagramViewRequestHandler::hasConfig() const noexcept {
    return m_configState.load(std::memory_order_acquire) == ConfigState::kept;
}

// Of several threads that have fetched one, the first one's is kept. The others wait while it moves its bag, during
// which it calls no other code.
void DiagramViewRequestHandler::keepConfig(variant_bag_t&& config) {
    ConfigState expected = ConfigState::none;
    if (m_configState.compare_exchange_strong(expected, ConfigState::arriving, std::memory_order_acquire)) {
        m_configBag = std::move(config);
        m_configState.store(ConfigState::kept, std::memory_order_release);
        m_configState.notify_all();
    } else {
        m_configState.wait(ConfigState::arriving, std::memory_order_acquire);
    }
}

error_code_t DiagramViewRequestHandler::create(const variant_bag_t& in, variant_bag_t& out,
                                               relay2::IProgress* progress) {
    getConfig(in, progress);
    // Reported under no lock: an assertion handler may send requests. Another thread may set the bag meanwhile,
    // so it is not looked at a second time.
    if (!hasConfig())
        return check::failedWith(TESSERA_HERE, "!m_configBag.is_empty()", false,
                                 R"(bk2::error::IsNot.Valid.Data(_U("Pane config is empty")))",
                                 bk2::error::IsNot.Valid.Data(_U("Pane config is empty")));
    const std::scoped_lock lock(m_mutex);
    if (!m_provider) {
        auto provider = PaneProvider::create(layoutOptions(), {&m_configBag, m_messenger, progress},
                                             m_queryLibrary, m_inputData);
        const bool isCancelled = provider && !provider->isComplete();
        m_provider = std::move(provider);
        if (isCancelled)
            return TESSERA_RAISE(bk2::error::Cancelled(_U("Cancelled while the diagram was laid out")));
    }
    if (!m_provider) return error_code_t::false_code();
    return m_provider->getMetadata(out, progress);
}

error_code_t DiagramViewRequestHandler::refresh(const variant_bag_t& /*in*/, variant_bag_t& out,
                                                relay2::IProgress* progress) {
    const std::scoped_lock lock(m_mutex);
    if (!m_provider) return error_code_t::false_code();
    return m_provider->refresh(out, progress);
}

error_code_t DiagramViewRequestHandler::changeDisplayMode(const variant_bag_t& in, variant_bag_t& out,
                                                          relay2::IProgress* progress) {
    const std::scoped_lock lock(m_mutex);
    if (!m_provider) return error_code_t::false_code();
    return m_provider->changeDisplayMode(in, out, progress);
}

}  // namespace tessera_1
