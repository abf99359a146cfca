// A document without cycles, as text.
#pragma once

#include <string>
#include <vector>

#include "host/document/problem.h"
#include "host/document/viewpoint.h"
#include "host/error.h"
#include "support/cancel_token.h"

namespace tessera_host {

struct FixedDocument {
    std::string text;
    Viewpoint::Pointer viewpoint;   // read from the text; never null
    std::vector<Problem> reversed;  // a note for each link that was reversed, at its position
};

// Reverses as few links as it can so that none form a cycle inside a group. Nothing else in the text changes,
// and a document without cycles not at all. n log n time. The error has the kind failed when the text cannot
// be changed, because its encoding is not UTF-8 and places in it cannot be found, or cancelled. REQUIRES:
// `viewpoint` was read from `text`.
[[nodiscard]] Expected<FixedDocument> fixDocument(std::string text, Viewpoint::Pointer viewpoint,
                                                  const tessera_support::CancelToken& token);

}  // namespace tessera_host
