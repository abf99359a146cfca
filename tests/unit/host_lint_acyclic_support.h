// What the tests of documents whose links form cycles share.
#pragma once

#include <string>
#include <utility>

#include "host/lint/reversal/acyclic_viewpoint.h"
#include "host/lint/reversal/fixed_document.h"
#include "tests/support/memory_host.h"

namespace tessera_host::acyclic_support {

using basekit2::variant_bag_t;
using tessera_support::CancelToken;

inline std::string diagram(const std::string& graph, const std::string& display = {}) {
    return "<v><diagram><graph id='g'>" + graph + "</graph>" +
           (display.empty() ? "" : "<display>" + display + "</display>") + "</diagram></v>";
}

inline Viewpoint::Pointer viewpointOf(const std::string& xml) {
    return *Viewpoint::fromBag(tessera_test::bagOf(xml), "x.xml", CancelToken());
}

inline AcyclicViewpoint madeAcyclic(const std::string& xml) {
    return *makeAcyclic(viewpointOf(xml), CancelToken());
}

inline variant_bag_t acyclic(const std::string& xml) {
    return madeAcyclic(xml).viewpoint->bag();
}

}  // namespace tessera_host::acyclic_support
