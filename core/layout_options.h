// What a host may set for the layout of one pane: limits, and a watcher. Passed to
// createDiagramViewRequestHandlerWithOptions(), which copies them; a handler without options has the
// defaults.
#pragma once

#include <cstddef>
#include <limits>

namespace tessera_1 {

class ILayoutWatcher;

// How large a diagram may grow while it is laid out. A cycle drives nodes down as many layers as the diagram
// has nodes, and a link to them then needs a "dummy" node a layer, whose id contains the ids of those before
// it. Beyond a limit the pass stops with a report, and the diagram has what was made until then.
struct LayoutLimits {
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    // What a host of untrusted documents sets; both count what the document declares as well.
    std::size_t maxElements = none;  // nodes and links together; also the layers that a pass adds
    std::size_t maxIdBytes = none;   // bytes of the ids of all nodes and links together
};

// Given with a handler and valid for all its requests. The defaults set no limit and watch nothing.
struct LayoutOptions {
    LayoutLimits limits;
    // Called after each stage of "create", on the thread of that request. Not owned; must outlive the
    // handler. Null for none: then nothing is measured.
    ILayoutWatcher* watcher = nullptr;
};

}  // namespace tessera_1
