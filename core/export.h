// Marks what libtessera offers to other binaries; everything else in it is hidden.
#pragma once

#define TESSERA_EXPORT __attribute__((visibility("default")))
// A member of an exported class that is not exported: only the library itself calls it.
#define TESSERA_HIDDEN __attribute__((visibility("hidden")))
