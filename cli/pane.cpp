#include "cli/commands.h"
#include "cli/interrupt.h"
#include "cli/message.h"
#include "cli/reserved_space.h"

namespace tessera_cli {

std::unique_ptr<tessera_host::Pane> openPane(const Options& options, relay2::IMessenger& messenger,
                                             relay2::IProgress& progress, int& exitStatus,
                                             tessera_draw::Reservation* reservation,
                                             tessera_1::ILayoutWatcher* watcher) {
    tessera_host::PaneSettings settings;
    settings.document = options.document;
    settings.database = options.database;
    settings.filters = options.filters;
    settings.catalogs = options.catalogs;
    settings.locale = options.locale;
    settings.queryTimeout = options.queryTimeout;
    settings.acyclic = options.acyclic;
    settings.layout = {options.limits, watcher};
    if (reservation != nullptr)
        settings.onViewpoint = [reservation](const auto& viewpoint) {
            *reservation = measureReservedSpace(viewpoint);
        };
    tessera_host::OpenError error;
    auto pane = tessera_host::Pane::open(settings, messenger, &progress, error);
    if (pane) return pane;
    if (!error.cancelled) printMessage(error.text);
    exitStatus = unlessInterrupted(error.unopened ? exitUnopened : exitFailed);
    return nullptr;
}

}  // namespace tessera_cli
