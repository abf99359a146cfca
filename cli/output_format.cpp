#include "cli/output_format.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <vector>

#include "cli/drawing.h"
#include "host/document/text.h"
#include "host/text/json_writer.h"
#include "host/text/xml_writer.h"

namespace tessera_cli {
namespace {

using tessera_host::Expected;

// The data formats hold the diagram as it is, so options of pictures do not concern them. Failures of the
// file are reported by its commit().
Expected<void> writeJson(const Options& /*options*/, const MadeDiagram& made, OutputFile& file) {
    tessera_host::writeJson(made.diagram, file.sink(), tessera_host::JsonForm::indented);
    file.sink().put('\n');
    return {};
}

Expected<void> writeXml(const Options& /*options*/, const MadeDiagram& made, OutputFile& file) {
    return tessera_host::writeXml(made.diagram, file.sink());
}

Expected<void> writeChanges(const Options& /*options*/, const MadeDiagram& made, OutputFile& file) {
    (void)file.sink().write(made.changes);  // commit() reports what failed
    return {};
}

// A new format is a row here.
constexpr std::array formats{
    OutputFormat{"json", OutputFormat::Kind::data, writeJson},
    OutputFormat{"xml", OutputFormat::Kind::data, writeXml},
    OutputFormat{"svg", OutputFormat::Kind::vectors, writeSvgDrawing},
    OutputFormat{"png", OutputFormat::Kind::pixels, writePngDrawing},
    OutputFormat{"pdf", OutputFormat::Kind::vectors, writePdfDrawing},
    OutputFormat{"changes", OutputFormat::Kind::changes, writeChanges},
};

}  // namespace

std::span<const OutputFormat> outputFormats() {
    return formats;
}

const OutputFormat* findOutputFormat(std::string_view name) {
    const auto* found = std::find_if(formats.begin(), formats.end(),
                                     [&](const OutputFormat& format) { return format.name == name; });
    return found == formats.end() ? nullptr : found;
}

bool isStandardOutput(const std::string& path) {
    return path.empty() || path == "-";
}

const OutputFormat* formatOfFile(const std::string& path) {
    if (isStandardOutput(path)) return &formats.front();
    const std::size_t dot = path.rfind('.');
    std::string ending = dot == std::string::npos ? "" : path.substr(dot + 1);
    // "PICTURE.PNG" names the same format as "picture.png".
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return findOutputFormat(ending);
}

std::string formatNames(bool picturesOnly) {
    std::vector<std::string_view> names;
    for (const OutputFormat& format : formats)
        if (format.isPicture() || !picturesOnly) names.push_back(format.name);
    return tessera_host::listed(names, " or ");
}

}  // namespace tessera_cli
