// Marks what libtessera_platform offers to other binaries. The library is compiled with hidden visibility, so
// everything without the mark stays inside of it. A class or function that a source file of the library
// defines and a host uses needs the mark; one that is all inline needs none.
#pragma once

#define TESSERA_PLATFORM_EXPORT __attribute__((visibility("default")))
