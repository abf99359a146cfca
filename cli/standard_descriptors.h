// Makes sure that standard input, output and error are open.
#pragma once

namespace tessera_cli {

// Opens /dev/null for each standard descriptor that the program was started without, so that no file opened
// later gets its number and is read or written by mistake. Input is empty then, writing output is an error,
// and messages are lost. REQUIRES: nothing has been opened yet.
void fillStandardDescriptors();

}  // namespace tessera_cli
