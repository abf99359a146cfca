// Diagrams as pictures.
#pragma once

#include <array>
#include <string_view>

#include "cli/options.h"
#include "cli/output_file.h"
#include "cli/output_format.h"
#include "draw/layout.h"
#include "draw/pages.h"
#include "draw/theme.h"

namespace tessera_cli {

// The values of --theme, --direction, --layers and --paper.
struct ThemeName {
    std::string_view name;
    tessera_draw::Theme theme;
};
inline constexpr std::array<ThemeName, 3> themeNames{{{"light", tessera_draw::Theme::light},
                                                      {"dark", tessera_draw::Theme::dark},
                                                      {"auto", tessera_draw::Theme::automatic}}};
struct DirectionName {
    std::string_view name;
    tessera_draw::Direction direction;
};
inline constexpr std::array<DirectionName, 3> directionNames{{{"lr", tessera_draw::Direction::leftToRight},
                                                              {"tb", tessera_draw::Direction::topToBottom},
                                                              {"auto", tessera_draw::Direction::automatic}}};
struct LayersName {
    std::string_view name;
    tessera_draw::LayerSource layers;
};
inline constexpr std::array<LayersName, 2> layersNames{
    {{"links", tessera_draw::LayerSource::links}, {"document", tessera_draw::LayerSource::levels}}};

struct PaperName {
    std::string_view name;
    tessera_draw::Paper paper;
};
inline constexpr std::array<PaperName, 3> paperNames{{{"a4", tessera_draw::Paper::a4},
                                                      {"a3", tessera_draw::Paper::a3},
                                                      {"letter", tessera_draw::Paper::letter}}};

// Draw the diagram as the options say, and write it as an OutputFormat does. PNG and PDF need a library that is
// loaded for them; the error has the kind cannotOpen when it is missing. A picture that was scaled down or
// lacks characters is written, and a message says so.
[[nodiscard]] tessera_host::Expected<void> writeSvgDrawing(const Options& options, const MadeDiagram& made,
                                                           OutputFile& file);
[[nodiscard]] tessera_host::Expected<void> writePngDrawing(const Options& options, const MadeDiagram& made,
                                                           OutputFile& file);
[[nodiscard]] tessera_host::Expected<void> writePdfDrawing(const Options& options, const MadeDiagram& made,
                                                           OutputFile& file);

}  // namespace tessera_cli
