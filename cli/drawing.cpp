#include "cli/drawing.h"

#include <fmt/format.h>

#include <optional>

#include "cli/interrupt.h"
#include "cli/message.h"
#include "cli/output_format.h"
#include "draw/picture_writer.h"
#include "draw/scene.h"
#include "draw/svg_writer.h"

namespace tessera_cli {
namespace {

// Stops taking anything once the program is interrupted.
class FileOutput final : public tessera_draw::Output {
  public:
    explicit FileOutput(tessera_host::TextSink& sink) : m_sink(sink) {}

    bool write(std::string_view piece) override { return !isInterrupted() && m_sink.write(piece); }

  private:
    tessera_host::TextSink& m_sink;
};

tessera_draw::Theme themeOf(const std::string& name) {
    if (name == "dark") return tessera_draw::Theme::dark;
    return name == "light" ? tessera_draw::Theme::light : tessera_draw::Theme::automatic;
}

using WritePicture = tessera_draw::PictureResult (tessera_draw::PictureWriter::*)(
    const tessera_draw::Scene&, const tessera_draw::PictureOptions&, tessera_draw::Output&);

// PNG and PDF, by a library that is loaded for them.
bool writePicture(const Options& options, const tessera_draw::Scene& scene, WritePicture write,
                  tessera_draw::Output& output) {
    const std::string_view format = options.format->name;
    std::string reason;
    tessera_draw::PictureWriter* writer = tessera_draw::loadPictureWriter(reason);
    if (writer == nullptr) {
        printMessage(fmt::format("{} cannot be written here: {}", format, reason));
        return false;
    }
    const tessera_draw::PictureOptions asked{themeOf(options.theme), options.scale, interruptToken()};
    const tessera_draw::PictureResult result = (writer->*write)(scene, asked, output);
    if (!result.error.empty()) printMessage(fmt::format("{}: {}", format, result.error));
    if (result.isWritten && result.scale < asked.scale)
        printMessage(fmt::format(
            "the drawing is {:.0f} by {:.0f}: it was scaled by {:.3g} to fit into a {}; svg has no limit",
            scene.size.width, scene.size.height, result.scale, format));
    if (result.isWritten && result.missingCharacters > 0)
        printMessage(
            fmt::format("{} characters are drawn as boxes, because no font that is installed here has them; "
                        "the drawing's own font is DejaVu Sans (fonts-dejavu-core)",
                        result.missingCharacters));
    return result.isWritten;
}

// None when the program was interrupted.
std::optional<tessera_draw::Scene> sceneOf(const Options& options, const basekit2::variant_bag_t& diagram,
                                           const tessera_draw::Reservation& reservation) {
    tessera_draw::SceneOptions sceneOptions;
    sceneOptions.reservation = &reservation;
    if (options.direction == "tb") sceneOptions.direction = tessera_draw::Direction::topToBottom;
    sceneOptions.cancel = interruptToken();
    if (isInterrupted()) return std::nullopt;
    std::optional<tessera_draw::Scene> scene = tessera_draw::makeScene(diagram, sceneOptions);
    if (isInterrupted()) return std::nullopt;
    return scene;
}

bool writeDrawing(const Options& options, const basekit2::variant_bag_t& diagram,
                  const tessera_draw::Reservation& reservation, WritePicture write, OutputFile& file) {
    const auto scene = sceneOf(options, diagram, reservation);
    if (!scene) return false;
    FileOutput output(file.sink());
    return writePicture(options, *scene, write, output);
}

}  // namespace

bool writeSvgDrawing(const Options& options, const basekit2::variant_bag_t& diagram,
                     const tessera_draw::Reservation& reservation, OutputFile& file) {
    const auto scene = sceneOf(options, diagram, reservation);
    if (!scene) return false;
    tessera_draw::SvgOptions svgOptions;
    svgOptions.theme = themeOf(options.theme);
    FileOutput output(file.sink());
    return tessera_draw::writeSvg(*scene, svgOptions, output);
}

bool writePngDrawing(const Options& options, const basekit2::variant_bag_t& diagram,
                     const tessera_draw::Reservation& reservation, OutputFile& file) {
    return writeDrawing(options, diagram, reservation, &tessera_draw::PictureWriter::writePng, file);
}

bool writePdfDrawing(const Options& options, const basekit2::variant_bag_t& diagram,
                     const tessera_draw::Reservation& reservation, OutputFile& file) {
    return writeDrawing(options, diagram, reservation, &tessera_draw::PictureWriter::writePdf, file);
}

}  // namespace tessera_cli
