#include <fmt/format.h>
#include <unistd.h>

#include "cli/commands.h"
#include "cli/interrupt.h"
#include "cli/message.h"
#include "cli/output_file.h"
#include "host/acyclic/fixed_document.h"
#include "host/check/document_check.h"
#include "host/engine/engine_registry.h"
#include "host/text/file_text.h"
#include "host/text/text_sink.h"
#include "host/text/xml_reader.h"

namespace tessera_cli {
namespace {

using basekit2::variant_bag_t;
using tessera_host::Finding;

const char* severityOf(const Finding& finding) {
    switch (finding.severity) {
        case relay2::severity_t::note:
            return "note";
        case relay2::severity_t::warning:
            return "warning";
        case relay2::severity_t::error:
            break;
    }
    return "error";
}

std::string lineOf(const std::string& document, const Finding& finding) {
    const char* severity = severityOf(finding);
    if (finding.position.line == 0) return fmt::format("{}: {}: {}\n", document, severity, finding.text);
    return fmt::format("{}:{}:{}: {}: {}\n", document, finding.position.line, finding.position.column,
                       severity, finding.text);
}

// Prints the findings; answers whether an error is among them.
bool report(const std::string& document, const std::vector<Finding>& findings) {
    tessera_host::FileSink sink(STDERR_FILENO, interruptDescriptor());
    bool hasError = false;
    for (const Finding& finding : findings) {
        sink.write(lineOf(document, finding));
        hasError = hasError || finding.severity == relay2::severity_t::error;
    }
    sink.flush();
    return hasError;
}

// The document as text, for what is to be written of it, and as a bag.
struct Document {
    std::string text;
    variant_bag_t viewpoint;
};

// exitDone, or what the program is to end with, the message printed.
int readDocument(const Options& options, Document& document, relay2::IProgress& progress) {
    auto error = tessera_host::readFileText(options.document, document.text, &progress);
    if (!error && document.text.empty())
        error = tessera_host::ReadError{.text = "the file is empty", .position = {1, 1}};
    if (!error) error = tessera_host::readXmlText(document.text, document.viewpoint, &progress);
    if (!error) return exitDone;
    if (error->cancelled) return exitInterrupted;
    if (error->unopened) {
        printMessage(tessera_host::describe(*error, options.document));
        return exitUnopened;
    }
    report(options.document, {{error->position, relay2::severity_t::error, error->text}});
    return exitFailed;
}

// Writes the document without circles, and makes it the one to be checked. Answers as above.
int fix(const Options& options, Document& document, OutputFile& file, relay2::IProgress& progress) {
    tessera_host::Watch watch(&progress);
    auto fixed = tessera_host::fixDocument(std::move(document.text), std::move(document.viewpoint), watch);
    if (!fixed && isInterrupted()) return exitInterrupted;
    if (!fixed) {
        printMessage(options.document + ": links go in circles, and only documents in UTF-8 can be fixed");
        return exitFailed;
    }
    report(options.document, fixed->turned);
    document.viewpoint = std::move(fixed->viewpoint);
    (void)file.sink().write(fixed->text);  // what goes wrong is known at the end
    if (file.commit()) return exitDone;
    if (!isInterrupted()) printMessage(file.error());
    return unlessInterrupted(exitUnopened);
}

}  // namespace

int check(const Options& options) {
    InterruptProgress progress;
    Document document;
    if (const int status = readDocument(options, document, progress); status != exitDone) return status;
    std::shared_ptr<tessera_host::IResult> result;
    if (!options.database.empty()) {
        auto opened = tessera_host::EngineRegistry::builtIn().open(options.database, {}, interruptToken());
        if (!opened) {
            if (!isInterrupted()) printMessage(describe(opened.error(), options.database));
            return unlessInterrupted(exitUnopened);
        }
        result = *std::move(opened);
    }
    OutputFile file;
    if (options.fix) {
        if (!file.open(options.output)) {
            if (!isInterrupted()) printMessage(file.error());
            return unlessInterrupted(exitUnopened);
        }
        if (const int status = fix(options, document, file, progress); status != exitDone) return status;
    }
    document.text = {};
    const auto declarations = tessera_host::Declarations::read(document.viewpoint);
    tessera_host::Filters filters = declarations->filters();
    for (const auto& [name, predicate] : options.filters)
        tessera_host::setFilter(filters, name, {predicate, {}});
    const auto findings =
        tessera_host::checkDocument(document.viewpoint, *declarations, filters, result, &progress);
    if (!findings) return exitInterrupted;
    return unlessInterrupted(report(options.document, *findings) ? exitFailed : exitDone);
}

}  // namespace tessera_cli
