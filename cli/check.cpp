#include <fmt/format.h>
#include <unistd.h>

#include "cli/commands.h"
#include "cli/interrupt.h"
#include "cli/message.h"
#include "cli/output_file.h"
#include "cli/terminal_text.h"
#include "host/engine/declaration_check.h"
#include "host/engine/engine_registry.h"
#include "host/lint/document_check.h"
#include "host/lint/reversal/fixed_document.h"
#include "host/text/file_text.h"
#include "host/text/text_sink.h"
#include "host/text/xml_reader.h"

namespace tessera_cli {
namespace {

using tessera_host::EngineRegistry;
using tessera_host::Error;
using tessera_host::ErrorKind;
using tessera_host::Problem;
using tessera_host::Viewpoint;

// "FILE:LINE:COLUMN: ..." is the form that editors recognize.
std::string lineOf(const std::string& document, const Problem& problem) {
    return terminalText(fmt::format("{}: {}: {}\n", tessera_host::placeIn(document, problem.position),
                                    nameOf(problem.severity), problem.text));
}

// Prints the problems; returns whether an error is among them.
bool report(const std::string& document, const std::vector<Problem>& problems) {
    tessera_host::FileSink sink(STDERR_FILENO, interruptDescriptor());
    bool hasError = false;
    for (const Problem& problem : problems) {
        sink.write(lineOf(document, problem));
        hasError = hasError || problem.severity == relay2::severity_t::error;
    }
    sink.flush();
    return hasError;
}

// The exit status of an error. An error in the document itself is printed like its other problems.
int finish(const std::string& document, const Error& error) {
    if (error.kind != ErrorKind::failed || error.position.line == 0)
        return reportError({error.kind, describe(error, document), {}});
    if (!isInterrupted()) report(document, {{error.position, error.text}});
    return orInterrupted(exitFailed);
}

// The text is kept for --fix, which writes it with few changes.
struct Document {
    std::string text;
    Viewpoint::Pointer viewpoint;
};

tessera_host::Expected<Document> readDocument(const std::string& path) {
    auto text = tessera_host::readFileText(path, interruptToken());
    if (!text) return std::move(text).error();
    if (text->empty()) return Error{ErrorKind::failed, "the file is empty", {1, 1}};
    auto viewpoint = Viewpoint::readText(*text, path, interruptToken());
    if (!viewpoint) return std::move(viewpoint).error();
    return Document{*std::move(text), *std::move(viewpoint)};
}

tessera_host::Expected<void> writeText(const std::string& text, OutputFile& file) {
    (void)file.sink().write(text);  // commit() reports what failed
    return file.commit();
}

}  // namespace

int check(const Options& options) {
    auto document = readDocument(options.document);
    if (!document) return finish(options.document, document.error());
    std::shared_ptr<tessera_host::IResult> result;
    if (!options.database.empty()) {
        auto opened = openResult(options);
        if (!opened) return reportError(opened.error());
        result = *std::move(opened);
    }
    OutputFile file;
    // Opened before links are reversed: a place that cannot be written is known at once.
    if (options.fix) {
        if (const auto opened = file.open(options.output); !opened) return reportError(opened.error());
        auto fixed =
            tessera_host::fixDocument(std::move(document->text), document->viewpoint, interruptToken());
        if (!fixed) return finish(options.document, fixed.error());
        report(options.document, fixed->reversed);
        if (const auto written = writeText(fixed->text, file); !written) return reportError(written.error());
        document->viewpoint = std::move(fixed->viewpoint);
    }
    const Viewpoint& viewpoint = *document->viewpoint;
    const auto& declarations = *viewpoint.declarations();
    const tessera_host::Filters filters = filtersOf(viewpoint, options);
    // Without a result, the SQL is checked as for the first engine.
    const std::vector<Problem> sqlProblems =
        result ? tessera_host::checkAgainstResult(*result, declarations, filters,
                                                  {interruptToken(), queryLimitsOf(options)})
               : tessera_host::checkWithoutResult(EngineRegistry::builtIn().engines().front(), declarations,
                                                  filters, interruptToken());
    const auto problems = tessera_host::checkDocument(viewpoint, sqlProblems, interruptToken());
    if (!problems) return exitInterrupted;
    return orInterrupted(report(options.document, *problems) ? exitFailed : exitDone);
}

}  // namespace tessera_cli
