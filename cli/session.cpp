#include <fmt/format.h>
#include <unistd.h>

#include <system_error>

#include "cli/commands.h"
#include "cli/interrupt.h"
#include "cli/line_reader.h"
#include "cli/message.h"
#include "cli/program_end.h"
#include "host/text/json_reader.h"
#include "host/text/json_writer.h"

namespace tessera_cli {
namespace {

using basekit2::error_code_t;
using basekit2::variant_bag_t;
using tessera_host::FileSink;

// A longer line is not a request; the longest sensible one has a few hundred bytes.
constexpr std::size_t maxLine = 16U << 20U;

struct Request {
    std::string name;
    const variant_bag_t* in = nullptr;
};

// Reads a request. Returns why the line is not one, or "". `bag` keeps what the request refers to.
std::string readRequest(const LineReader& reader, variant_bag_t& bag, Request& request) {
    static const variant_bag_t noInput;
    if (reader.isTooLong()) return fmt::format("is longer than {} bytes", maxLine);
    auto read = tessera_host::readJson(reader.line());
    if (!read) return fmt::format("column {}: {}", read.error().position.column, read.error().text);
    bag = *std::move(read);
    const basekit2::variant_t* name = bag.get("request");
    if (name == nullptr || !name->can_get<std::string_view>()) return "has no string \"request\"";
    request.name = name->get<std::string_view>();
    if (bag.get("in") != nullptr) return "\"in\" is not an object";
    request.in = bag.get_variant_bag("in");
    if (request.in == nullptr) request.in = &noInput;
    return {};
}

class Session {
  public:
    Session(tessera_host::Pane& pane, relay2::IMessenger& messages) : m_pane(pane), m_messages(messages) {}

    // Answers one line; false when the answer could not be written.
    bool answer(const LineReader& reader) {
        ++m_lineNumber;
        variant_bag_t bag;
        Request request;
        const std::string problem = readRequest(reader, bag, request);
        variant_bag_t answer;
        answer.put("request", request.name);
        if (!problem.empty()) {
            answer.put("code", bk2::error::IsNot.Valid.Data.name);
            answer.put("message", fmt::format("line {} is not a request: {}", m_lineNumber, problem));
            (void)answer.add_variant_bag("out");
            return write(answer);
        }
        variant_bag_t& out = answer.add_variant_bag("out");
        const error_code_t code =
            m_pane.request(request.name, *request.in, out, {interruptToken(), &m_messages});
        answer.put("code", code.name());
        if (!code.succeeded()) answer.put("message", code.message());
        return write(answer);
    }

  private:
    static bool write(const variant_bag_t& answer) {
        FileSink sink(STDOUT_FILENO, interruptDescriptor());
        tessera_host::writeJson(answer, sink, tessera_host::JsonForm::compact);
        sink.put('\n');
        if (sink.flush()) return true;
        if (isInterrupted()) return false;
        printMessage(
            fmt::format("standard output: cannot write: {}", std::generic_category().message(sink.error())));
        return false;
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
    const auto pane = makePane(*input, options);
    Session session(*pane, messenger);
    LineReader reader(STDIN_FILENO, interruptDescriptor(), maxLine);
    while (reader.next())
        if (!session.answer(reader)) return orInterrupted(exitCannotOpen);
    if (isInterrupted()) return exitInterrupted;
    if (reader.error() == 0) return endProgram(exitDone);
    printMessage(
        fmt::format("standard input: cannot read: {}", std::generic_category().message(reader.error())));
    return exitCannotOpen;
}

}  // namespace tessera_cli
