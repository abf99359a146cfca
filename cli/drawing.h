// Diagrams as pictures.
#pragma once

#include <string>

#include "cli/options.h"
#include "cli/output_file.h"
#include "draw/reservation.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_cli {

// Whether the format is a picture's.
[[nodiscard]] bool isPicture(const std::string& format);

// Draws `diagram` as the options ask and writes it. False, with the message printed, when that cannot be
// done; false without one when the program was interrupted or the file took no more.
[[nodiscard]] bool writeDrawing(const Options& options, const basekit2::variant_bag_t& diagram,
                                const tessera_draw::Reservation& reservation, OutputFile& file);

}  // namespace tessera_cli
