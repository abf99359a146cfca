// Diagrams as pictures.
#pragma once

#include "cli/options.h"
#include "cli/output_file.h"
#include "draw/reservation.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_cli {

// Draw `diagram` as the options say, and write it as an OutputFormat does. PNG and PDF need a library that is
// loaded for them: the error has the kind cannotOpen when it is not there. What a reader of the picture should
// know (that it was scaled down, that characters are missing) is printed as a message.
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
