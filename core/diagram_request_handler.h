// The request handler of one diagram pane.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>

#include "core/data_provider.h"
#include "core/factory.h"

namespace tessera_1 {

// Dispatches the pane's requests by name and owns the one provider that serves them. Requests may come on any
// thread; those that use the provider run one at a time, under the handler's one lock. Nothing that is called
// meanwhile may send this handler a request: query library, input data, progress sink, messenger, watcher,
// catalogues, and the assertion handler of checks below create(). Made by the factory; owned by the host.
class DiagramViewRequestHandler : public panelcore_1::IRequestHandler {
  public:
    // Takes references and keeps them until it is destroyed, in reverse order of the members; calls none of
    // them.
    DiagramViewRequestHandler(basekit2::sptr_t<qlib_1::IQueryLibrary> queryLibrary,
                              basekit2::sptr_t<qlib_1::IInputData> inputData,
                              std::shared_ptr<panelcore_1::IRequestHandler> baseHandler,
                              std::shared_ptr<panelcore_1::IFilterMgr> filterMgr,
                              relay2::IMessenger* messenger);

    // "diagramView", in every state. Takes no lock.
    [[nodiscard]] std::string getDomainName() const override;

    // Dispatches "create", "refresh" and "changeDisplayMode", compared exactly. For any other name it returns
    // a raised FailedTo whose message is that name.
    basekit2::error_code_t handleRequest(const std::string& name, const basekit2::variant_bag_t& in,
                                         basekit2::variant_bag_t& out, relay2::IProgress* progress) override;

    // The pane's configuration. While there is none, each call sends "config" to the base handler, holding no
    // lock: the base handler may send requests to this handler. The first configuration that is not empty is
    // kept in m_configBag, and never changes again.
    // `in` is passed on to the base handler, whose result code is ignored. The bag belongs to the handler. As
    // long as there is no configuration, or no base handler, the result is an empty bag, which stays empty; a
    // later call returns the configuration. Any thread, at any time: the call never waits for a request.
    const basekit2::variant_bag_t& getConfig(const basekit2::variant_bag_t& in, relay2::IProgress* progress);

    // Builds the diagram the first time, and writes it into `out` every time. An empty configuration is the
    // not-valid-data error; a first time that yields no diagram is the false code.
    // REQUIRES of this and the next two: the calling thread is not inside a request of this handler, except
    // in the base handler's "config". `progress` may be null. After an error `out` may hold a part of the
    // diagram.
    basekit2::error_code_t create(const basekit2::variant_bag_t& in, basekit2::variant_bag_t& out,
                                  relay2::IProgress* progress);

    // Both return the false code before the first successful "create".
    basekit2::error_code_t refresh(const basekit2::variant_bag_t& in, basekit2::variant_bag_t& out,
                                   relay2::IProgress* progress);
    basekit2::error_code_t changeDisplayMode(const basekit2::variant_bag_t& in, basekit2::variant_bag_t& out,
                                             relay2::IProgress* progress);

  private:
    enum class ConfigState : unsigned char { none, arriving, kept };

    [[nodiscard]] bool hasConfig() const noexcept;
    void keepConfig(basekit2::variant_bag_t&& config);
    // For the diagrams of this handler. A handler without options has the defaults.
    [[nodiscard]] virtual LayoutOptions layoutOptions() const { return {}; }

    basekit2::sptr_t<qlib_1::IQueryLibrary> m_queryLibrary;
    basekit2::sptr_t<qlib_1::IInputData> m_inputData;
    relay2::IMessenger* m_messenger;           // not owned; may be null
    std::unique_ptr<DataProvider> m_provider;  // null until a "create" has made one
    std::shared_ptr<panelcore_1::IRequestHandler> m_baseHandler;
    std::shared_ptr<panelcore_1::IFilterMgr> m_filterMgr;  // kept, never called
    basekit2::variant_bag_t m_configBag;  // read only when m_configState is `kept`; not written from then on
    std::atomic<ConfigState> m_configState = ConfigState::none;
    std::mutex m_mutex;  // held while m_provider is used
};

}  // namespace tessera_1
