// Documents whose links go in circles, mended or told of.
#pragma once

#include "host/check/watch.h"
#include "platform/basekit2/variant_bag.h"
#include "platform/relay2/messenger.h"

namespace tessera_host {

// Turns the fewest links that it can around so that none go in a circle inside a group, and tells which; also
// which circles stay, because no turning opens them. A document without circles is left as it is, and nothing
// is said. Takes n log n time.
void makeAcyclic(basekit2::variant_bag_t& viewpoint, relay2::IMessenger& messenger, Watch& watch);

// Only tells: which links go in circles, a warning for each set of nodes that they connect, and that turning
// would help, or that it would not. Few of many are told.
void tellCycles(const basekit2::variant_bag_t& viewpoint, relay2::IMessenger& messenger, Watch& watch);

}  // namespace tessera_host
