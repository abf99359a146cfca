// The formats that a diagram can be written in: one table for options, help and writing.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "cli/output_file.h"
#include "draw/reservation.h"
#include "draw/saved_layout.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_cli {

struct Options;

// What render() has made: the diagram in the wanted mode, as it was created, and what pictures keep space for.
struct MadeDiagram {
    basekit2::variant_bag_t diagram;
    std::optional<basekit2::variant_bag_t> created;  // none where the diagram is that
    tessera_draw::Reservation reservation;
    std::string changes;  // the table of --format changes
    std::optional<tessera_draw::SavedLayout>
        kept;                          // the layout that the picture keeps; none: it is laid out anew
    OutputFile* layoutFile = nullptr;  // open, for the layout of the picture; null: it is not saved
};

struct OutputFormat {
    enum class Kind : std::uint8_t {
        data,     // the library's bag as it is
        vectors,  // a picture; takes the options of drawings
        pixels,   // the same, with a size
        changes,  // a table of what differs from another result
    };

    std::string_view name;  // of --format, and the ending of its files
    Kind kind;
    // Writes the diagram to the sink of `file`, which render() commits. An error says why the diagram cannot be
    // written in this format, or that the program was interrupted. Whether the file took everything is for
    // commit() to say.
    tessera_host::Expected<void> (*write)(const Options& options, const MadeDiagram& made, OutputFile& file);

    [[nodiscard]] bool isPicture() const noexcept { return kind == Kind::vectors || kind == Kind::pixels; }
};

// The first one is the format of standard output.
[[nodiscard]] std::span<const OutputFormat> outputFormats();

// Null when no format has this name.
[[nodiscard]] const OutputFormat* findOutputFormat(std::string_view name);

// Whether an output with this name is standard output: "" and "-" are.
[[nodiscard]] bool isStandardOutput(const std::string& path);

// The format of a file by its ending, in upper or lower case; null when the ending names none. That of
// standard output is the first one.
[[nodiscard]] const OutputFormat* formatOfFile(const std::string& path);

// "json, xml, svg, png, pdf or changes", or those of them that are pictures.
[[nodiscard]] std::string formatNames(bool picturesOnly = false);

}  // namespace tessera_cli
