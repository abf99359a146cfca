#include "cli/drawing.h"

#include <fmt/format.h>

#include "cli/interrupt.h"
#include "cli/message.h"
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

// PNG and PDF.
bool writePixels(const Options& options, const tessera_draw::Scene& scene, tessera_draw::Output& output) {
    std::string reason;
    tessera_draw::PictureWriter* writer = tessera_draw::loadPictureWriter(reason);
    if (writer == nullptr) {
        printMessage(fmt::format("{} cannot be written here: {}", options.format, reason));
        return false;
    }
    const tessera_draw::PictureOptions asked{themeOf(options.theme), options.scale, interruptToken()};
    const tessera_draw::PictureResult result = options.format == "png"
                                                   ? writer->writePng(scene, asked, output)
                                                   : writer->writePdf(scene, asked, output);
    if (!result.error.empty()) printMessage(fmt::format("{}: {}", options.format, result.error));
    if (result.isWritten && result.scale < asked.scale)
        printMessage(fmt::format(
            "the drawing is {:.0f} by {:.0f}: it was scaled by {:.3g} to fit into a {}; svg has no limit",
            scene.size.width, scene.size.height, result.scale, options.format));
    if (result.isWritten && result.missingCharacters > 0)
        printMessage(
            fmt::format("{} characters are drawn as boxes, because no font that is installed here has them; "
                        "the drawing's own font is DejaVu Sans (fonts-dejavu-core)",
                        result.missingCharacters));
    return result.isWritten;
}

}  // namespace

bool isPicture(const std::string& format) {
    return format == "svg" || format == "png" || format == "pdf";
}

bool writeDrawing(const Options& options, const basekit2::variant_bag_t& diagram,
                  const tessera_draw::Reservation& reservation, OutputFile& file) {
    tessera_draw::SceneOptions sceneOptions;
    sceneOptions.reservation = &reservation;
    if (options.direction == "tb") sceneOptions.direction = tessera_draw::Direction::topToBottom;
    sceneOptions.cancel = interruptToken();
    if (isInterrupted()) return false;
    const tessera_draw::Scene scene = tessera_draw::makeScene(diagram, sceneOptions);
    if (isInterrupted()) return false;
    FileOutput output(file.sink());
    if (options.format == "svg") {
        tessera_draw::SvgOptions svgOptions;
        svgOptions.theme = themeOf(options.theme);
        return tessera_draw::writeSvg(scene, svgOptions, output);
    }
    return writePixels(options, scene, output);
}

}  // namespace tessera_cli
