// Which elements and attributes a document may hold.
#pragma once

#include "host/document/problem.h"
#include "platform/basekit2/variant_bag.h"
#include "support/cancel_token.h"

namespace tessera_host {

// Reports every element and attribute that no reader of the document knows, and attributes with a value that
// they cannot have.
void checkVocabulary(const basekit2::variant_bag_t& viewpoint, ProblemList& problems,
                     const tessera_support::CancelToken& token);

}  // namespace tessera_host
