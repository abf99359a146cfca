#include "cli/drawing.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "cli/child_process.h"
#include "cli/interrupt.h"
#include "cli/layout_file.h"
#include "cli/message.h"
#include "cli/output_format.h"
#include "cli/pdf_check.h"
#include "cli/sink_output.h"
#include "draw/picture_writer.h"
#include "draw/scene.h"
#include "draw/svg_writer.h"

namespace tessera_cli {
namespace {

using tessera_host::Error;
using tessera_host::ErrorKind;
using tessera_host::Expected;

// Keeps everything, so that a picture is looked at before it is written.
class MemoryOutput final : public tessera_draw::Output {
  public:
    bool write(std::string_view piece) override {
        m_bytes += piece;
        return !isInterrupted();
    }
    [[nodiscard]] const std::string& bytes() const { return m_bytes; }

  private:
    std::string m_bytes;
};

tessera_draw::Theme themeOf(std::string_view wanted) {
    for (const auto& [name, theme] : themeNames)
        if (name == wanted) return theme;
    return tessera_draw::Theme::automatic;  // without the option
}

tessera_draw::Direction directionOf(std::string_view wanted) {
    for (const auto& [name, direction] : directionNames)
        if (name == wanted) return direction;
    return tessera_draw::Direction::automatic;  // without the option
}

tessera_draw::LayerSource layersOf(std::string_view wanted) {
    for (const auto& [name, layers] : layersNames)
        if (name == wanted) return layers;
    return tessera_draw::LayerSource::links;  // without the option
}

tessera_draw::Paper paperOf(std::string_view wanted) {
    for (const auto& [name, paper] : paperNames)
        if (name == wanted) return paper;
    return tessera_draw::Paper::none;  // without the option
}

using WritePicture = tessera_draw::PictureResult (tessera_draw::PictureWriter::*)(
    const tessera_draw::Scene&, const tessera_draw::PictureOptions&, tessera_draw::Output&);

// What a child reports of its picture: the numbers, and the text of the error after them.
struct Report {
    bool isLoaded = false;
    int writeError = 0;
    double scale = 1;
    std::size_t missingCharacters = 0;
    std::size_t otherWidths = 0;
};

// Messages on what the picture lacks; they do not change the exit status.
void reportPicture(const Report& result, const tessera_draw::Scene& scene, const Options& options) {
    if (!options.paper.empty() && result.scale < tessera_draw::minPaperScale)
        printMessage(
            fmt::format("the drawing is {:.0f} by {:.0f}: it was scaled by {:.3g} to fit on {} pages",
                        scene.size.width, scene.size.height, result.scale, tessera_draw::maxPages));
    if (options.paper.empty() && result.scale < options.scale)
        printMessage(fmt::format(
            "the drawing is {:.0f} by {:.0f}: it was scaled by {:.3g} to fit into a {}; svg has no limit",
            scene.size.width, scene.size.height, result.scale, options.format->name));
    if (result.missingCharacters > 0)
        printMessage(
            fmt::format("{} characters are drawn as boxes, because no font that is installed here has them; "
                        "the drawing's own font is DejaVu Sans (fonts-dejavu-core)",
                        result.missingCharacters));
    if (result.otherWidths > 0)
        printMessage(
            fmt::format("{} texts have another width than expected: the font DejaVu Sans (fonts-dejavu-core) "
                        "may be missing here, or there was not enough memory",
                        result.otherWidths));
}

std::string packed(const Report& report, const std::string& error) {
    std::string bytes(sizeof report, '\0');
    std::memcpy(bytes.data(), &report, sizeof report);
    return bytes + error;
}

// PNG and PDF, by a library that is loaded for them.
std::string drawInChild(const Options& options, const tessera_draw::Scene& scene, WritePicture write,
                        OutputFile& file, const std::function<void()>& willWrite) {
    // A font that cannot be read is only a warning to the libraries, and the picture lacks its text. Read
    // when they are loaded.
    setenv("G_DEBUG", "fatal-warnings", 1);  // NOLINT(concurrency-mt-unsafe): this process has one thread
    std::string reason;
    tessera_draw::PictureWriter* writer = tessera_draw::loadPictureWriter(reason);
    if (writer == nullptr) return packed({}, reason);
    const tessera_draw::PictureOptions request{themeOf(options.theme), options.scale, paperOf(options.paper),
                                               interruptToken()};
    MemoryOutput output;
    errno = 0;
    tessera_draw::PictureResult result = (writer->*write)(scene, request, output);
    // The libraries leave out a letter or a kerning for which there was no memory, and report nothing.
    const bool isShort = result.ranShort || errno == ENOMEM;
    const bool isPdf = options.format->kind == OutputFormat::Kind::vectors;
    if (result.isWritten && (isShort || (isPdf && !isWholePdf(output.bytes()))))
        result.error = "the drawing is not whole; there may not be enough memory";
    willWrite();
    if (result.error.empty()) (void)file.sink().write(output.bytes());  // flush() says what failed
    return packed({true, file.flush(), result.scale, result.missingCharacters, result.otherWidths},
                  result.error);
}

// In a process of its own, because the libraries end it when memory is short.
Expected<void> writePicture(const Options& options, const tessera_draw::Scene& scene, WritePicture write,
                            OutputFile& file) {
    const std::string_view format = options.format->name;
    const auto done = runInChild([&](const std::function<void()>& willWrite) {
        return drawInChild(options, scene, write, file, willWrite);
    });
    if (!done && done.error().isCancelled()) return done.error();
    if (!done) return Error{ErrorKind::cannotOpen, fmt::format("{}: {}", format, done.error().text)};
    Report report;
    if (done->size() < sizeof report)
        return Error{ErrorKind::cannotOpen, fmt::format("{}: the drawing ended without a result", format)};
    std::memcpy(&report, done->data(), sizeof report);
    const std::string error = done->substr(sizeof report);
    if (!report.isLoaded)
        return Error{ErrorKind::cannotOpen, fmt::format("{} cannot be written here: {}", format, error)};
    if (!error.empty()) return Error{ErrorKind::cannotOpen, fmt::format("{}: {}", format, error)};
    file.noteFailure(report.writeError);
    if (report.writeError == 0) reportPicture(report, scene, options);
    return {};
}

// The error is that the program was interrupted.
Expected<tessera_draw::Scene> sceneOf(const Options& options, const MadeDiagram& made) {
    tessera_draw::SceneOptions sceneOptions;
    sceneOptions.reservation = &made.reservation;
    // Those of the first mode, whatever is shown: boxes have the same places in every mode.
    sceneOptions.firstValues = made.created ? &*made.created : &made.diagram;
    sceneOptions.direction = directionOf(options.direction);
    sceneOptions.fit = options.fit;
    sceneOptions.isFolded = options.fold != "off";
    sceneOptions.layers = layersOf(options.layers);
    sceneOptions.kept = made.kept ? &*made.kept : nullptr;
    sceneOptions.isSaved = made.layoutFile != nullptr;
    sceneOptions.cancel = interruptToken();
    if (isInterrupted()) return tessera_host::cancelledError();
    tessera_draw::Scene scene = tessera_draw::makeScene(made.diagram, sceneOptions);
    if (isInterrupted()) return tessera_host::cancelledError();
    if (made.kept) reportForeignLayout(options, *made.kept, scene);
    if (made.layoutFile != nullptr) saveLayout(*scene.layout, *made.layoutFile);
    return scene;
}

Expected<void> writeDrawing(const Options& options, const MadeDiagram& made, WritePicture write,
                            OutputFile& file) {
    auto scene = sceneOf(options, made);
    if (!scene) return std::move(scene).error();
    return writePicture(options, *scene, write, file);
}

}  // namespace

Expected<void> writeSvgDrawing(const Options& options, const MadeDiagram& made, OutputFile& file) {
    auto scene = sceneOf(options, made);
    if (!scene) return std::move(scene).error();
    tessera_draw::SvgOptions svgOptions;
    svgOptions.theme = themeOf(options.theme);
    SinkOutput output(file.sink());
    (void)tessera_draw::writeSvg(*scene, svgOptions, output);  // false: the file takes no more
    return {};
}

Expected<void> writePngDrawing(const Options& options, const MadeDiagram& made, OutputFile& file) {
    return writeDrawing(options, made, &tessera_draw::PictureWriter::writePng, file);
}

Expected<void> writePdfDrawing(const Options& options, const MadeDiagram& made, OutputFile& file) {
    return writeDrawing(options, made, &tessera_draw::PictureWriter::writePdf, file);
}

}  // namespace tessera_cli
