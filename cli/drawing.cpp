#include "cli/drawing.h"

#include <fmt/format.h>

#include <utility>

#include "cli/interrupt.h"
#include "cli/message.h"
#include "cli/output_format.h"
#include "draw/picture_writer.h"
#include "draw/scene.h"
#include "draw/svg_writer.h"

namespace tessera_cli {
namespace {

using tessera_host::Error;
using tessera_host::ErrorKind;
using tessera_host::Expected;

// Stops taking anything once the program is interrupted.
class FileOutput final : public tessera_draw::Output {
  public:
    explicit FileOutput(tessera_host::TextSink& sink) : m_sink(sink) {}

    bool write(std::string_view piece) override { return !isInterrupted() && m_sink.write(piece); }

  private:
    tessera_host::TextSink& m_sink;
};

tessera_draw::Theme themeOf(std::string_view wanted) {
    for (const auto& [name, theme] : themeNames)
        if (name == wanted) return theme;
    return tessera_draw::Theme::automatic;  // without the option
}

tessera_draw::Direction directionOf(std::string_view wanted) {
    for (const auto& [name, direction] : directionNames)
        if (name == wanted) return direction;
    return tessera_draw::Direction::leftToRight;  // without the option
}

using WritePicture = tessera_draw::PictureResult (tessera_draw::PictureWriter::*)(
    const tessera_draw::Scene&, const tessera_draw::PictureOptions&, tessera_draw::Output&);

// Messages on what the picture lacks; they do not change the exit status.
void reportPicture(const tessera_draw::PictureResult& result, const tessera_draw::Scene& scene,
                   const Options& options) {
    if (result.scale < options.scale)
        printMessage(fmt::format(
            "the drawing is {:.0f} by {:.0f}: it was scaled by {:.3g} to fit into a {}; svg has no limit",
            scene.size.width, scene.size.height, result.scale, options.format->name));
    if (result.missingCharacters > 0)
        printMessage(
            fmt::format("{} characters are drawn as boxes, because no font that is installed here has them; "
                        "the drawing's own font is DejaVu Sans (fonts-dejavu-core)",
                        result.missingCharacters));
}

// PNG and PDF, by a library that is loaded for them.
Expected<void> writePicture(const Options& options, const tessera_draw::Scene& scene, WritePicture write,
                            tessera_draw::Output& output) {
    const std::string_view format = options.format->name;
    std::string reason;
    tessera_draw::PictureWriter* writer = tessera_draw::loadPictureWriter(reason);
    if (writer == nullptr)
        return Error{ErrorKind::cannotOpen, fmt::format("{} cannot be written here: {}", format, reason)};
    const tessera_draw::PictureOptions request{themeOf(options.theme), options.scale, interruptToken()};
    const tessera_draw::PictureResult result = (writer->*write)(scene, request, output);
    if (!result.error.empty())
        return Error{ErrorKind::cannotOpen, fmt::format("{}: {}", format, result.error)};
    if (result.isWritten) reportPicture(result, scene, options);
    return {};
}

// The error is that the program was interrupted.
Expected<tessera_draw::Scene> sceneOf(const Options& options, const basekit2::variant_bag_t& diagram,
                                      const tessera_draw::Reservation& reservation) {
    tessera_draw::SceneOptions sceneOptions;
    sceneOptions.reservation = &reservation;
    sceneOptions.direction = directionOf(options.direction);
    sceneOptions.cancel = interruptToken();
    if (isInterrupted()) return tessera_host::cancelledError();
    tessera_draw::Scene scene = tessera_draw::makeScene(diagram, sceneOptions);
    if (isInterrupted()) return tessera_host::cancelledError();
    return scene;
}

Expected<void> writeDrawing(const Options& options, const basekit2::variant_bag_t& diagram,
                            const tessera_draw::Reservation& reservation, WritePicture write,
                            OutputFile& file) {
    auto scene = sceneOf(options, diagram, reservation);
    if (!scene) return std::move(scene).error();
    FileOutput output(file.sink());
    return writePicture(options, *scene, write, output);
}

}  // namespace

Expected<void> writeSvgDrawing(const Options& options, const basekit2::variant_bag_t& diagram,
                               const tessera_draw::Reservation& reservation, OutputFile& file) {
    auto scene = sceneOf(options, diagram, reservation);
    if (!scene) return std::move(scene).error();
    tessera_draw::SvgOptions svgOptions;
    svgOptions.theme = themeOf(options.theme);
    FileOutput output(file.sink());
    (void)tessera_draw::writeSvg(*scene, svgOptions, output);  // false: the file takes no more
    return {};
}

Expected<void> writePngDrawing(const Options& options, const basekit2::variant_bag_t& diagram,
                               const tessera_draw::Reservation& reservation, OutputFile& file) {
    return writeDrawing(options, diagram, reservation, &tessera_draw::PictureWriter::writePng, file);
}

Expected<void> writePdfDrawing(const Options& options, const basekit2::variant_bag_t& diagram,
                               const tessera_draw::Reservation& reservation, OutputFile& file) {
    return writeDrawing(options, diagram, reservation, &tessera_draw::PictureWriter::writePdf, file);
}

}  // namespace tessera_cli
