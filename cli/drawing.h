// Diagrams as pictures.
#pragma once

#include "cli/options.h"
#include "cli/output_file.h"
#include "draw/reservation.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_cli {

// Draw `diagram` as the options say, and write it as an OutputFormat does.
[[nodiscard]] bool writeSvgDrawing(const Options& options, const basekit2::variant_bag_t& diagram,
                                   const tessera_draw::Reservation& reservation, OutputFile& file);
[[nodiscard]] bool writePngDrawing(const Options& options, const basekit2::variant_bag_t& diagram,
                                   const tessera_draw::Reservation& reservation, OutputFile& file);
[[nodiscard]] bool writePdfDrawing(const Options& options, const basekit2::variant_bag_t& diagram,
                                   const tessera_draw::Reservation& reservation, OutputFile& file);

}  // namespace tessera_cli
