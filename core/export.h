// Marks what libtessera offers to other binaries; everything else in it is hidden.
#pragma once

#define TESSERA_EXPORT __attribute__((visibility("default")))
// A member of an exported class that is nobody else's business.
#define TESSERA_HIDDEN __attribute__((visibility("hidden")))
