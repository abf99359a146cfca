// Diagrams as pictures.
#pragma once

#include "cli/options.h"
#include "cli/output_file.h"
#include "draw/reservation.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_cli {

// Draw `diagram` as the options say, and write it as an OutputFormat does. PNG and PDF need a library that is
// loaded for them; the error has the kind cannotOpen when it is missing. A picture that was scaled down or
// lacks characters is written, and a message says so.
[[nodiscard]] tessera_host::Expected<void> writeSvgDrawing(const Options& options,
                                                           const basekit2::variant_bag_t& diagram,
                                                           const tessera_draw::Reservation& reservation,
                                                           OutputFile& file);
[[nodiscard]] tessera_host::Expected<void> writePngDrawing(const Options& options,
                                                           const basekit2::variant_bag_t& diagram,
                                                           const tessera_draw::Reservation& reservation,
                                                           OutputFile& file);
[[nodiscard]] tessera_host::Expected<void> writePdfDrawing(const Options& options,
                                                           const basekit2::variant_bag_t& diagram,
                                                           const tessera_draw::Reservation& reservation,
                                                           OutputFile& file);

}  // namespace tessera_cli
