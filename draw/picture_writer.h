// Scenes as PNG and PDF. The libraries for that are loaded only when somebody asks for one.
#pragma once

#include <cstddef>
#include <string>

#include "draw/output.h"
#include "draw/scene.h"
#include "draw/theme.h"
#include "support/cancel_token.h"

namespace tessera_draw {

struct PictureOptions {
    Theme theme = Theme::light;  // `automatic` is the light one: these formats cannot ask the reader
    double scale = 1;            // pixels of a PNG for one of the scene
    tessera_support::CancelToken cancel = {};
};

struct PictureResult {
    bool isWritten = false;
    std::string error;                  // why not; "" when it was stopped or the output took no more
    double scale = 1;                   // less than was asked for, when that would have become too large
    std::size_t missingCharacters = 0;  // which no font has; boxes were drawn for them
};

// Writes pictures. One link path at a time.
class PictureWriter {
  public:
    PictureWriter() = default;
    PictureWriter(const PictureWriter&) = delete;
    PictureWriter& operator=(const PictureWriter&) = delete;
    virtual ~PictureWriter() = default;

    // At most maxPngPixels pixels, and maxPngSide on a side.
    virtual PictureResult writePng(const Scene& scene, const PictureOptions& options, Output& output) = 0;
    // One page, as large as the drawing at 96 pixels an inch; a side of more than maxPdfSide is scaled down,
    // since readers show no larger ones. Its text can be selected and searched.
    virtual PictureResult writePdf(const Scene& scene, const PictureOptions& options, Output& output) = 0;
};

inline constexpr double maxPngPixels = 50e6;
inline constexpr double maxPngSide = 32000;
inline constexpr double maxPdfSide = 14400;  // points

// The writer, from its own library beside the program's others; it stays loaded. Null, with `error` filled,
// when that cannot be loaded.
[[nodiscard]] PictureWriter* loadPictureWriter(std::string& error);

}  // namespace tessera_draw
