// Feeds lines of JSON to a pane as `tessera session` does: each line of the input is a request of one session.
// Requires that every response is a line of JSON that reads back.
#include <algorithm>
#include <string>

#include "fuzz/support.h"
#include "host/text/json_reader.h"
#include "host/text/json_writer.h"

namespace {

using basekit2::variant_bag_t;
using tessera_fuzz::require;

// Groups, a link with values in each display mode, a query with keys and one that fails.
constexpr std::string_view document = R"(<viewpoint>
<queries><query id="q" from="t" format="si:3" unit="B">SUM(a)</query>
<query id="k" from="t" key="b">COUNT(*)</query><query id="n" from="nowhere">1</query></queries>
<diagram><graph id="g"><node id="g1" type="group"><node id="a"/><node id="b"/></node><node id="c"/>
<link id="l" from="a" to="b" direction="forward"/><link id="m" from="b" to="c"/></graph>
<display><node id="a"><rowSet><queryRef displayName="r">/q</queryRef><queryRef>/n</queryRef></rowSet></node>
<link id="l" displayName="L"><label location="from"><dataTransfer displayName="t">
<bandwidth><rowSet displayName="s"><queryRef displayName="r">/k/x</queryRef></rowSet></bandwidth>
<ratio><rowSet displayName="s"><queryRef displayName="r">/q</queryRef></rowSet></ratio>
</dataTransfer></label></link></display></diagram></viewpoint>)";

tessera_host::Viewpoint::Pointer readDocument() {
    auto viewpoint = tessera_host::Viewpoint::readText(document, "document", {});
    require(viewpoint.hasValue(), "the document is well-formed");
    return *std::move(viewpoint);
}

// Fills the response like cli/session.cpp; false when the line is not a request.
bool runRequest(tessera_host::Pane& pane, std::string_view line, variant_bag_t& response) {
    const auto request = tessera_host::readJson(line);
    if (!request) return false;
    const basekit2::variant_t* name = request->get("request");
    if (name == nullptr || !name->can_get<std::string_view>()) return false;
    response.put("request", name->get<std::string_view>());
    if (request->get("in") != nullptr) return false;
    static const variant_bag_t noInput;
    const variant_bag_t* in = request->get_variant_bag("in");
    variant_bag_t& out = response.add_variant_bag("out");
    const auto code =
        pane.request(std::string(name->get<std::string_view>()), in == nullptr ? noInput : *in, out, {});
    response.put("code", code.name());
    return true;
}

void respond(tessera_host::Pane& pane, std::string_view line) {
    variant_bag_t response;
    if (!runRequest(pane, line, response)) return;
    std::string text;
    tessera_host::StringSink sink(text);
    require(tessera_host::writeJson(response, sink, tessera_host::JsonForm::compact),
            "a response is written");
    require(text.find('\n') == std::string::npos, "a response is one line");
    require(tessera_host::readJson(text).hasValue(), "a response reads back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const tessera_fuzz::SmallResult result;
    static const tessera_host::Viewpoint::Pointer viewpoint = readDocument();
    constexpr int maxRequests = 12;
    std::string_view text = tessera_fuzz::textOf(data, size);
    tessera_host::Pane pane(viewpoint, result.get(), viewpoint->filters(), tessera_fuzz::smallLimits());
    for (int i = 0; i < maxRequests && !text.empty(); ++i) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        respond(pane, text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return 0;
}
