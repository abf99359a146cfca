// Standard input, output and error as a program expects them.
#pragma once

namespace tessera_cli {

// Fills the places of standard descriptors that the program was started without, so that no file opened later
// takes one and is read or written by mistake: input is empty then, writing output is an error, messages go
// nowhere. REQUIRES: nothing has been opened yet.
void fillStandardDescriptors();

}  // namespace tessera_cli
