// The request handler of one diagram pane.
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "core/data_provider.h"
#include "core/factory.h"

namespace tessera_1 {

// Dispatches the pane's requests by name and owns the one provider that serves them. Requests may come on any
// thread; those that use the provider run one at a time.
class DiagramViewRequestHandler : public panelcore_1::IRequestHandler {
  public:
    DiagramViewRequestHandler(basekit2::sptr_t<qlib_1::IQueryLibrary> queryLibrary,
                              basekit2::sptr_t<qlib_1::IInputData> inputData,
                              std::shared_ptr<panelcore_1::IRequestHandler> baseHandler,
                              std::shared_ptr<panelcore_1::IFilterMgr> filterMgr,
                              relay2::IMessenger* messenger);

    // "diagramView", in every state.
    [[nodiscard]] std::string getDomainName() const override;

    // Dispatches "create", "refresh" and "changeDisplayMode", compared exactly. For any other name it returns a
    // raised FailedTo whose message is that name.
    basekit2::error_code_t handleRequest(const std::string& name, const basekit2::variant_bag_t& in,
                                         basekit2::variant_bag_t& out, relay2::IProgress* progress) override;

    // The pane's configuration, which is m_configBag. While that is empty, each call sends "config" to the
    // base handler, holding no lock: the base handler may send requests to this handler. The first
    // configuration that is not empty is kept, and never changes again.
    const basekit2::variant_bag_t& getConfig(const basekit2::variant_bag_t& in, relay2::IProgress* progress);

    // Builds the diagram the first time, and writes it into `out` every time. An empty configuration is the
    // not-valid-data error; a first time that yields no diagram is the false code.
    basekit2::error_code_t create(const basekit2::variant_bag_t& in, basekit2::variant_bag_t& out,
                                  relay2::IProgress* progress);

    // Both return the false code before the first successful "create".
    basekit2::error_code_t refresh(const basekit2::variant_bag_t& in, basekit2::variant_bag_t& out,
                                   relay2::IProgress* progress);
    basekit2::error_code_t changeDisplayMode(const basekit2::variant_bag_t& in, basekit2::variant_bag_t& out,
                                             relay2::IProgress* progress);

  private:
    [[nodiscard]] bool hasConfig();
    // For the diagrams of this handler. A handler without options has the defaults.
    [[nodiscard]] virtual LayoutOptions layoutOptions() const { return {}; }

    basekit2::sptr_t<qlib_1::IQueryLibrary> m_queryLibrary;
    basekit2::sptr_t<qlib_1::IInputData> m_inputData;
    relay2::IMessenger* m_messenger;
    std::unique_ptr<DataProvider> m_provider;
    std::shared_ptr<panelcore_1::IRequestHandler> m_baseHandler;
    std::shared_ptr<panelcore_1::IFilterMgr> m_filterMgr;
    basekit2::variant_bag_t m_configBag;
    std::mutex m_mutex;  // held while m_provider is used, and for a moment to look at m_configBag or set it
};

}  // namespace tessera_1
