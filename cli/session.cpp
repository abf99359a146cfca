#include <fmt/format.h>
#include <unistd.h>

#include <system_error>

#include "cli/commands.h"
#include "cli/interrupt.h"
#include "cli/layout_inspector.h"
#include "cli/line_reader.h"
#include "cli/message.h"
#include "cli/program_end.h"
#include "cli/standard_descriptors.h"
#include "host/text/json_reader.h"
#include "host/text/json_writer.h"

namespace tessera_cli {
namespace {

using basekit2::error_code_t;
using basekit2::variant_bag_t;
using tessera_host::Error;
using tessera_host::ErrorKind;
using tessera_host::Expected;
using tessera_host::FileSink;

// A longer line is not a request; the longest sensible one has a few hundred bytes. Read as JSON, a line takes up to
// a hundred times its length.
constexpr std::size_t maxLine = 1U << 20U;

Error notARequest(std::string text) {
    return {ErrorKind::failed, std::move(text)};
}

Expected<variant_bag_t> readObject(const LineReader& reader) {
    if (reader.isTooLong()) return notARequest(fmt::format("it is longer than {} bytes", maxLine));
    auto object = tessera_host::readJson(reader.line());
    if (object) return object;
    return notARequest(fmt::format("column {}: {}", object.error().position.column, object.error().text));
}

Expected<std::string> nameOf(const variant_bag_t& request) {
    const basekit2::variant_t* name = request.get("request");
    if (name == nullptr || !name->can_get<std::string_view>())
        return notARequest("it has no string \"request\"");
    return std::string(name->get<std::string_view>());
}

// The bag of the request; the empty bag when it has none. Lives as long as the request.
Expected<const variant_bag_t*> inputOf(const variant_bag_t& request) {
    static const variant_bag_t noInput;
    if (request.get("in") != nullptr) return notARequest("\"in\" is not an object");
    const variant_bag_t* in = request.get_variant_bag("in");
    return in == nullptr ? &noInput : in;
}

class Session {
  public:
    Session(tessera_host::Pane& pane, relay2::IMessenger& messages) : m_pane(pane), m_messages(messages) {}

    // Runs the request on one line and writes the response.
    [[nodiscard]] Expected<void> respond(const LineReader& reader) {
        ++m_lineNumber;
        variant_bag_t response;
        // Put first, so that every response has this member, also where the line is not a request.
        response.put("request", "");
        if (const auto done = runRequest(reader, response); !done) {
            response.put("code", bk2::error::IsNot.Valid.Data.name);
            response.put("message",
                         fmt::format("line {} is not a request: {}", m_lineNumber, done.error().text));
            (void)response.add_variant_bag("out");
        }
        return write(response);
    }

  private:
    // Puts the name of the request and what came of it into `response`. An error says why the line is not a
    // request.
    Expected<void> runRequest(const LineReader& reader, variant_bag_t& response) {
        const auto request = readObject(reader);
        if (!request) return request.error();
        const auto name = nameOf(*request);
        if (!name) return name.error();
        response.put("request", *name);
        const auto in = inputOf(*request);
        if (!in) return in.error();
        variant_bag_t& out = response.add_variant_bag("out");
        const error_code_t code = m_pane.request(*name, **in, out, {interruptToken(), &m_messages});
        response.put("code", code.name());
        if (!code.succeeded()) response.put("message", code.message());
        return {};
    }

    static Expected<void> write(const variant_bag_t& response) {
        // Flushed after each response: the client waits for it before its next request.
        FileSink sink(dataOutput(), interruptDescriptor());
        tessera_host::writeJson(response, sink, tessera_host::JsonForm::compact);
        sink.put('\n');
        if (sink.flush()) return {};
        return Error{ErrorKind::cannotOpen, fmt::format("standard output: cannot write: {}",
                                                        std::generic_category().message(sink.error()))};
    }

    tessera_host::Pane& m_pane;
    relay2::IMessenger& m_messages;
    std::size_t m_lineNumber = 0;
};

}  // namespace

int session(const Options& options) {
    ConsoleMessenger messenger(options.document);
    const auto input = openInput(options, messenger);
    if (!input) return reportError(input.error());
    LayoutInspector inspector(options);
    const auto pane = makePane(*input, options, &inspector);
    Session session(*pane, messenger);
    LineReader reader(STDIN_FILENO, interruptDescriptor(), maxLine);
    while (reader.next()) {
        const auto written = session.respond(reader);
        if (!written) return reportError(written.error());
        inspector.reportTruncation();
    }
    if (isInterrupted()) return exitInterrupted;
    if (reader.error() == 0) return endProgram(exitDone);
    return reportError({ErrorKind::cannotOpen, fmt::format("standard input: cannot read: {}",
                                                           std::generic_category().message(reader.error()))});
}

}  // namespace tessera_cli
