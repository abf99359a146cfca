// One diagram pane on real parts: a document, a database, and the diagram library's handler between them.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "core/layout_options.h"
#include "host/document/viewpoint.h"
#include "host/engine/table_tree_engine.h"
#include "host/text/read_error.h"
#include "platform/panelcore_1/request_handler.h"
#include "platform/relay2/messenger.h"
#include "platform/relay2/progress.h"

namespace tessera_host {

struct PaneSettings {
    std::string document;                        // path of the viewpoint
    std::string database;                        // path of the result
    std::map<std::string, std::string> filters;  // replace the document's; an empty text removes one
    std::string catalogs;                        // folder of the message catalogues; "" for none
    std::string locale;
    double queryTimeout = 600;        // seconds
    bool acyclic = false;             // reverses links that form cycles; otherwise they are only reported
    tessera_1::LayoutOptions layout;  // its watcher must outlive the pane
    // Is called with the document as the library will read it. May be empty.
    std::function<void(const Viewpoint::Pointer&)> onViewpoint;
};

// Why a pane could not be opened. `text` names the file, and line and column where there are any.
struct OpenError {
    std::string text;
    bool unopened = false;  // a file could not be opened or read, as opposed to: what it holds is wrong
    bool cancelled = false;
};

class Pane {
  public:
    // Reads the document, opens the database read-only and makes the handler. `messenger` must outlive the
    // pane. Null, with `error` filled, when that fails. The catalogues become those of the whole process.
    [[nodiscard]] static std::unique_ptr<Pane> open(const PaneSettings& settings,
                                                    relay2::IMessenger& messenger,
                                                    relay2::IProgress* progress, OpenError& error);

    // Sends a request to the handler. All its queries see the database as it is at one moment. Any thread;
    // requests wait for each other.
    basekit2::error_code_t request(const std::string& name, const basekit2::variant_bag_t& in,
                                   basekit2::variant_bag_t& out, relay2::IProgress* progress);

  private:
    Pane(std::shared_ptr<SnapshotSource> source, std::shared_ptr<panelcore_1::IRequestHandler> handler);

    std::mutex m_mutex;
    std::shared_ptr<SnapshotSource> m_source;
    std::shared_ptr<panelcore_1::IRequestHandler> m_handler;
};

}  // namespace tessera_host
