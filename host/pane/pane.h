// One diagram pane: a viewpoint, a result, and the diagram library's handler between them.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "core/layout_options.h"
#include "host/document/viewpoint.h"
#include "host/engine/snapshot_source.h"
#include "host/engine/table_tree_engine.h"
#include "platform/panelcore_1/request_handler.h"
#include "platform/relay2/messenger.h"

namespace tessera_host {

// Valid for the whole life of a pane.
struct PaneOptions {
    QueryLimits queryLimits;          // of each statement
    tessera_1::LayoutOptions layout;  // its watcher, when there is one, outlives the pane
    // Gets every value that is fetched; the texts of values then end in a tag, which describeValues() of
    // host/meaning/described_values.h takes off. Null: values are as they are.
    std::shared_ptr<CellRecord> record = nullptr;
};

// Valid for one request. Both are borrowed: what they refer to outlives the request.
struct RequestOptions {
    CancelToken cancel;
    // Gets the messages of this request, and of no other, on the thread that sends it. Null: they are
    // dropped. A MessageList collects them.
    relay2::IMessenger* messages = nullptr;
};

// Made cheaply, any number of times from one viewpoint and one result; panes that share them may run requests
// on several threads at once. The requests of one pane run one at a time: a further one waits, until its turn
// or until its own token is cancelled.
//
// The diagram belongs to the pane: "create" reads the viewpoint and lays it out once, "refresh" fetches the
// values again and "changeDisplayMode" changes what is shown. Labels of links keep the values of their first
// "create"; a host that wants all values new makes another pane.
class Pane {
  public:
    // Neither pointer may be null; both stay alive with the pane. `filters` are all that apply: the
    // document's own, with those of the user in their place. Reads nothing and runs no query; the library
    // reads the viewpoint with the first "create".
    Pane(Viewpoint::Pointer viewpoint, std::shared_ptr<IResult> result, Filters filters,
         const PaneOptions& options = {});
    Pane(const Pane&) = delete;
    Pane& operator=(const Pane&) = delete;
    ~Pane();

    // Sends a request to the handler: "create", "refresh" or "changeDisplayMode". All its queries see the
    // database as it is at one moment; a request without queries waits for no lock. `out` gets what the
    // handler writes. The code is the handler's: FailedTo for an unknown name, Cancelled when the token was
    // cancelled. Cancelled before it began, it has done nothing and `out` is untouched; cancelled while
    // values were fetched, a "create" leaves a diagram without some of its labels, for ever (core/factory.h).
    // A query that fails is reported to `options.messages` and leaves the earlier values in place. Any
    // thread; never called from within a request of the same pane, or from a watcher.
    [[nodiscard]] basekit2::error_code_t request(const std::string& name, const basekit2::variant_bag_t& in,
                                                 basekit2::variant_bag_t& out, const RequestOptions& options);

    // Replaces all filters, from the next request on; a request that is running keeps the old ones. Values
    // change with the next "refresh". Any thread; does not wait.
    void setFilters(Filters filters);

  private:
    class Messages;

    void applyFilters();

    const Viewpoint::Pointer m_viewpoint;
    const std::shared_ptr<SnapshotSource> m_source;
    const std::unique_ptr<Messages> m_messages;
    const basekit2::sptr_t<InputData> m_inputData;
    const std::shared_ptr<panelcore_1::IRequestHandler> m_handler;
    std::mutex m_requestMutex;  // one request at a time
    std::mutex m_filterMutex;   // of the next member
    std::optional<Filters> m_nextFilters;
};

}  // namespace tessera_host
