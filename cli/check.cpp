#include <fmt/format.h>
#include <unistd.h>

#include "cli/commands.h"
#include "cli/interrupt.h"
#include "cli/message.h"
#include "host/check/document_check.h"
#include "host/text/text_sink.h"
#include "host/text/xml_reader.h"

namespace tessera_cli {
namespace {

using tessera_host::Finding;

std::string lineOf(const std::string& document, const Finding& finding) {
    const char* severity = finding.severity == relay2::severity_t::error ? "error" : "warning";
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

}  // namespace

int check(const Options& options) {
    InterruptProgress progress;
    basekit2::variant_bag_t viewpoint;
    if (const auto error = tessera_host::readXmlFile(options.document, viewpoint, &progress)) {
        if (error->cancelled) return exitInterrupted;
        if (error->unopened) {
            printMessage(tessera_host::describe(*error, options.document));
            return exitUnopened;
        }
        report(options.document, {{error->position, relay2::severity_t::error, error->text}});
        return exitFailed;
    }
    std::shared_ptr<tessera_host::Database> database;
    if (!options.database.empty()) {
        std::string reason;
        database = tessera_host::Database::open(options.database, {}, &progress, reason);
        if (!database) {
            if (!isInterrupted()) printMessage(options.database + ": " + reason);
            return unlessInterrupted(exitUnopened);
        }
    }
    const auto declarations = tessera_host::Declarations::read(viewpoint);
    tessera_host::Filters filters = declarations->filters();
    for (const auto& [name, predicate] : options.filters)
        tessera_host::setFilter(filters, name, {predicate, {}});
    const auto findings = tessera_host::checkDocument(viewpoint, *declarations, filters, database, &progress);
    if (!findings) return exitInterrupted;
    return unlessInterrupted(report(options.document, *findings) ? exitFailed : exitDone);
}

}  // namespace tessera_cli
