// Marks what libtessera_platform offers to other binaries; everything else in it is hidden.
#pragma once

#define TESSERA_PLATFORM_EXPORT __attribute__((visibility("default")))
