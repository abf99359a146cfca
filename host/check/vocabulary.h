// Which elements and attributes a document may hold.
#pragma once

#include "host/check/finding.h"
#include "host/check/watch.h"

namespace tessera_host {

// Reports every element and attribute that nobody reads, and values that are none of those an attribute can
// have.
void checkVocabulary(const basekit2::variant_bag_t& viewpoint, Findings& findings, Watch& watch);

}  // namespace tessera_host
