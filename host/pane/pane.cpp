#include "host/pane/pane.h"

#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>

#include <chrono>
#include <thread>
#include <utility>
#include <vector>

#include "core/factory.h"
#include "host/document/text.h"
#include "host/engine/query_library.h"
#include "host/engine/token_progress.h"

namespace tessera_host {
namespace {

using basekit2::error_code_t;
using basekit2::variant_bag_t;

// How often a request that waits for another one looks at its token. No signal could wake it: tokens are
// cancelled in signal handlers, too, which may not notify.
constexpr std::chrono::milliseconds waitStep{5};

log4cplus::Logger logger() {
    return log4cplus::Logger::getInstance("tessera.host");
}

// Milliseconds since `begin`.
std::int64_t since(std::chrono::steady_clock::time_point begin) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin)
        .count();
}

// What values mean is the host's business: the library gets the document without it.
void copyForLibrary(const variant_bag_t& document, variant_bag_t& out) {
    bool hasMeaning = false;
    for (auto child = document.begin(); !child.at_end(); child.next())
        hasMeaning = hasMeaning || ValueMeaning::isMeaning(child.get_name());
    if (!hasMeaning) {
        out = document;
        return;
    }
    variant_bag_t copy;
    copy.set_position(document.position());
    for (auto value = document.begin_values(); !value.at_end(); value.next())
        copy.append(value.get_name(), value.get_value());
    for (auto child = document.begin(); !child.at_end(); child.next())
        if (!ValueMeaning::isMeaning(child.get_name()))
            copy.add_variant_bag(child.get_name()) = child.get_value();
    out = std::move(copy);
}

// The base handler of the pane: its configuration is the viewpoint.
class ViewpointSource final : public panelcore_1::IRequestHandler {
  public:
    explicit ViewpointSource(Viewpoint::Pointer viewpoint) : m_viewpoint(std::move(viewpoint)) {}

    [[nodiscard]] std::string getDomainName() const override { return "viewpoint"; }

    error_code_t handleRequest(const std::string& name, const variant_bag_t& /*in*/, variant_bag_t& out,
                               relay2::IProgress* /*progress*/) override {
        if (name != "config")
            return error_code_t::raise(bk2::error::FailedTo(RTBASE_2_18::strings::ustring8(name)), __func__,
                                       "host/pane/pane", __LINE__);
        copyForLibrary(m_viewpoint->bag(), out);
        return {};
    }

  private:
    const Viewpoint::Pointer m_viewpoint;
};

class PaneFilters final : public panelcore_1::IFilterMgr {
  public:
    explicit PaneFilters(basekit2::sptr_t<InputData> inputData) : m_inputData(std::move(inputData)) {}

    [[nodiscard]] std::vector<std::string> getFilterNames() const override {
        return m_inputData->filterNames();
    }

  private:
    const basekit2::sptr_t<InputData> m_inputData;
};

}  // namespace

// The handler keeps one messenger for its life; this one forwards messages to the request that is running.
class Pane::Messages final : public relay2::IMessenger {
  public:
    void post(relay2::severity_t severity, const std::string& text,
              basekit2::source_position_t position) override {
        if (m_target) m_target->post(severity, text, position);
    }

    // Where messages go while it lives.
    class Target {
      public:
        Target(Messages& messages, relay2::IMessenger* target) : m_messages(messages) {
            m_messages.m_target = target;
        }
        ~Target() { m_messages.m_target = nullptr; }
        Target(const Target&) = delete;
        Target& operator=(const Target&) = delete;

      private:
        Messages& m_messages;
    };

  private:
    relay2::IMessenger* m_target = nullptr;
};

Pane::Pane(Viewpoint::Pointer viewpoint, std::shared_ptr<IResult> result, Filters filters,
           const PaneOptions& options)
    : m_viewpoint(std::move(viewpoint)),
      m_source(std::make_shared<SnapshotSource>(std::move(result))),
      m_messages(std::make_unique<Messages>()),
      m_inputData(basekit2::make_counted<InputData>(m_source, m_viewpoint->declarations(), std::move(filters),
                                                    m_messages.get(), options.queryLimits, options.record)),
      m_handler(tessera_1::createDiagramViewRequestHandlerWithOptions(
          basekit2::make_counted<QueryLibrary>(m_viewpoint->declarations()), m_inputData,
          std::make_shared<ViewpointSource>(m_viewpoint), std::make_shared<PaneFilters>(m_inputData),
          m_messages.get(), options.layout)) {
    LOG4CPLUS_DEBUG(logger(), "pane on " << m_viewpoint->name() << ": "
                                         << m_viewpoint->declarations()->queries().size() << " queries, "
                                         << m_inputData->filterNames().size() << " filters");
}

Pane::~Pane() = default;

error_code_t Pane::request(const std::string& name, const variant_bag_t& in, variant_bag_t& out,
                           const RequestOptions& options) {
    std::unique_lock lock(m_requestMutex, std::defer_lock);
    // Not a timed lock: the thread sanitizer does not know it.
    while (true) {
        if (options.cancel.isCancelled())
            return error_code_t::raise(bk2::error::Cancelled(_U("Cancelled before the request began")),
                                       __func__, "host/pane/pane", __LINE__);
        if (lock.try_lock()) break;
        std::this_thread::sleep_for(waitStep);
    }
    applyFilters();
    const Messages::Target target(*m_messages, options.messages);
    const SnapshotHold hold(*m_source);
    TokenProgress progress(options.cancel);
    const auto begin = std::chrono::steady_clock::now();
    const error_code_t code = m_handler->handleRequest(name, in, out, &progress);
    LOG4CPLUS_DEBUG(logger(), "request \"" << oneLine(name) << "\" answered " << code.name() << " in "
                                           << since(begin) << " ms");
    return code;
}

void Pane::setFilters(Filters filters) {
    const std::scoped_lock lock(m_filterMutex);
    m_nextFilters = std::move(filters);
}

void Pane::applyFilters() {
    const std::scoped_lock lock(m_filterMutex);
    if (!m_nextFilters) return;
    m_inputData->setFilters(*std::move(m_nextFilters));
    m_nextFilters.reset();
}

}  // namespace tessera_host
