// The program's subcommands. Each answers the program's exit status.
#pragma once

#include "cli/options.h"
#include "draw/reservation.h"
#include "host/pane/pane.h"

namespace tessera_cli {

// Makes one diagram and writes it.
int render(const Options& options);

// Answers requests, a line each, until end of input.
int session(const Options& options);

// Reports everything wrong with a document.
int check(const Options& options);

// The pane that the options describe; null, with the message printed and `exitStatus` set, when it cannot be
// opened. `reservation`, when it is not null, becomes the room that a drawing of the document keeps. `watcher`
// may be null and must outlive the pane.
[[nodiscard]] std::unique_ptr<tessera_host::Pane> openPane(const Options& options,
                                                           relay2::IMessenger& messenger,
                                                           relay2::IProgress& progress, int& exitStatus,
                                                           tessera_draw::Reservation* reservation = nullptr,
                                                           tessera_1::ILayoutWatcher* watcher = nullptr);

}  // namespace tessera_cli
