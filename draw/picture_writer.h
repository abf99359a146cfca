// Scenes as PNG and PDF. The graphics libraries are loaded with the first picture, so that a program that
// writes none starts without them.
#pragma once

#include <cstddef>
#include <string>

#include "draw/output.h"
#include "draw/pages.h"
#include "draw/scene.h"
#include "draw/theme.h"
#include "support/cancel_token.h"

namespace tessera_draw {

struct PictureOptions {
    // `automatic` means light: these formats cannot adapt to a reader's settings.
    Theme theme = Theme::light;
    // PNG only: pixels of the picture for each pixel of the scene, greater than 0.
    double scale = 1;
    // PDF only: the sheets that the drawing is divided over.
    Paper paper = Paper::none;
    // Checked before each element. What the output has taken by then is not a whole picture.
    tessera_support::CancelToken cancel{};
};

struct PictureResult {
    bool isWritten = false;
    // For people, unless isWritten. "" when the call was cancelled, or when the output took no more.
    std::string error;
    // The scale that was used: less than requested when the picture would have exceeded the limits below.
    double scale = 1;
    // Characters that no installed font has; each was drawn as a box.
    std::size_t missingCharacters = 0;
    // Texts that are drawn with another width than the layout reserved: their font may be missing, or memory was short.
    std::size_t otherWidths = 0;
    // A library left ENOMEM in errno while the scene was painted, and may have left something out. Only for callers
    // that set errno to 0 before.
    bool ranShort = false;
};

// Writes pictures. One call at a time. Scene and output are used during the call only.
class PictureWriter {
  public:
    PictureWriter() = default;
    PictureWriter(const PictureWriter&) = delete;
    PictureWriter& operator=(const PictureWriter&) = delete;
    virtual ~PictureWriter() = default;

    // Writes one PNG of at most maxPngPixels pixels, with sides of at most maxPngSide; scales down otherwise. A
    // drawing whose texts could not be read then gets at most maxOverviewPixels; one that would be scaled by
    // less than minPngScale is an error.
    virtual PictureResult writePng(const Scene& scene, const PictureOptions& options, Output& output) = 0;
    // Writes one PDF page of the drawing's size at 96 pixels per inch, scaled down when a side exceeds
    // maxPdfSide, because readers do not show larger pages. Its text can be selected and searched. A drawing that
    // would be scaled by less than minPdfScale is an error. The same scene gives the same bytes on one machine.
    // With a paper, writes the pages of planPages() instead; see draw/pages.h for their scale.
    virtual PictureResult writePdf(const Scene& scene, const PictureOptions& options, Output& output) = 0;
};

inline constexpr double maxPngPixels = 50e6;  // width times height, about 200 MB while it is painted
inline constexpr double maxPngSide = 32000;   // pixels
inline constexpr double maxPdfSide = 14400;   // points, 1/72 inch
// Below this, letters are three pixels high or less.
inline constexpr double minReadableScale = 0.25;
// Of a PNG that had to be scaled down further than that: it only shows the shape of the drawing.
inline constexpr double maxOverviewPixels = 12e6;
inline constexpr double minPngScale = 0.01;  // boxes are one or two pixels wide
// Readers enlarge 64 times at most, and then a text cannot be read either.
inline constexpr double minPdfScale = minReadableScale / 64;

// Loads the library that holds the writer and returns the writer. The library stays loaded
// and owns the writer; further calls return the same one. Null when it cannot be loaded;
// `error` then says why, for people.
[[nodiscard]] PictureWriter* loadPictureWriter(std::string& error);

}  // namespace tessera_draw
