// Standard input, output and error: open, and output for data only.
#pragma once

namespace tessera_cli {

// Opens /dev/null for each standard descriptor that the program was started without, so that no file opened
// later gets its number and is read or written by mistake. Input is empty then, writing output is an error,
// and messages are lost. Then sets standard output aside for the program's data: what a library prints on its
// number goes to standard error. REQUIRES: nothing has been opened yet.
void prepareStandardDescriptors();

// The descriptor of standard output as the program was started with it. All data goes there. Never closed.
[[nodiscard]] int dataOutput() noexcept;

}  // namespace tessera_cli
