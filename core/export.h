// Marks what libtessera offers to other binaries; everything else in it is hidden.
#pragma once

#define TESSERA_EXPORT __attribute__((visibility("default")))
