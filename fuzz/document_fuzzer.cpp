// Feeds documents to all code that handles them: the XML reader, the queries, the library with all passes, and
// the writer. Built with assertions, so that the graph is verified after each pass.
#include "fuzz/support.h"
#include "host/lint/reversal/acyclic_viewpoint.h"
#include "host/text/json_writer.h"

namespace {

void request(tessera_host::Pane& pane, const char* name, const basekit2::variant_bag_t& in) {
    basekit2::variant_bag_t out;
    (void)pane.request(name, in, out, {});
    tessera_fuzz::NoSink sink;
    (void)tessera_host::writeJson(out, sink);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const tessera_fuzz::SmallResult result;
    static const tessera_fuzz::MemoryFile document;
    document.set(tessera_fuzz::textOf(data, size));
    const auto viewpoint = tessera_host::Viewpoint::readFile(document.path(), {});
    if (!viewpoint) return 0;
    (void)describeCycles(**viewpoint, {});
    tessera_host::Pane pane(*viewpoint, result.get(), (*viewpoint)->filters(), tessera_fuzz::smallLimits());
    request(pane, "create", {});
    basekit2::variant_bag_t mode;
    mode.add_variant_bag("mode").put("", "size");
    request(pane, "changeDisplayMode", mode);
    request(pane, "refresh", {});
    return 0;
}
