// The implementation of PictureWriter with cairo, and the function that returns it to the program.
#include <cairo-pdf.h>
#include <cairo.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>

#include "draw/picture_writer.h"
#include "draw/pictures/page_painter.h"
#include "draw/pictures/painter.h"
#include "draw/scene/shown_text.h"

namespace tessera_draw {
namespace {

struct Freed {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_t* cairo) const { cairo_destroy(cairo); }
};
using Surface = std::unique_ptr<cairo_surface_t, Freed>;
using Context = std::unique_ptr<cairo_t, Freed>;

cairo_status_t handOn(void* closure, const unsigned char* data, unsigned int length) {
    auto& output = *static_cast<Output*>(closure);
    const bool isTaken = output.write({reinterpret_cast<const char*>(data), length});
    return isTaken ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_WRITE_ERROR;
}

// The message for people; "" when the output took no more, because the output knows the reason.
std::string problemOf(cairo_status_t status) {
    if (status == CAIRO_STATUS_SUCCESS || status == CAIRO_STATUS_WRITE_ERROR) return {};
    return cairo_status_to_string(status);
}

PictureResult failure(cairo_status_t status) {
    PictureResult result;
    result.error = problemOf(status);
    return result;
}

// The largest scale that keeps a PNG within its limits. They bound memory, which is four bytes for each pixel, and time.
double pngScale(double width, double height, double wanted) {
    const auto fitting = [&](double pixels) { return std::sqrt(pixels / width / height); };
    const double fit = std::min({maxPngSide / width, maxPngSide / height, fitting(maxPngPixels)});
    if (wanted <= fit) return wanted;
    return fit < minReadableScale ? std::min(fit, fitting(maxOverviewPixels)) : fit;
}

PictureResult tooLarge(double width, double height, double scale) {
    std::array<char, 160> text{};
    (void)std::snprintf(text.data(), text.size(),
                        "the drawing is %.0f by %.0f: it would be scaled by %.2g and could not be read; "
                        "svg has no limit",
                        width, height, scale);
    PictureResult result;
    result.error = text.data();
    return result;
}

// A page of the drawing's own size.
bool paintPage(cairo_t* cairo, const Scene& scene, const PictureOptions& options, PictureResult& result) {
    cairo_scale(cairo, pointsPerPixel * result.scale, pointsPerPixel * result.scale);
    const bool isPainted = paintScene(cairo, scene, options, result);
    cairo_show_page(cairo);
    return isPainted;
}

// The title for the PDF's metadata, limited in length. A PDF with text that is not valid cannot be finished.
std::string titleOf(const Scene& scene) {
    constexpr std::size_t maxBytes = 200;
    std::string title;
    appendShown(title, scene.name.substr(0, tessera_support::truncatedUtf8Length(scene.name, maxBytes)));
    return title;
}

class CairoWriter final : public PictureWriter {
  public:
    PictureResult writePng(const Scene& scene, const PictureOptions& options, Output& output) override {
        const double width = std::ceil(scene.size.width);
        const double height = std::ceil(scene.size.height);
        PictureResult result;
        result.scale = pngScale(width, height, options.scale);
        if (result.scale < std::min(minPngScale, options.scale)) return tooLarge(width, height, result.scale);
        const auto pixels = [&](double length) {
            return std::max(1, static_cast<int>(std::lround(length * result.scale)));
        };
        const Surface surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, pixels(width), pixels(height)));
        const Context cairo(cairo_create(surface.get()));
        cairo_scale(cairo.get(), result.scale, result.scale);
        if (!paintScene(cairo.get(), scene, options, result)) return {};
        if (const auto status = cairo_status(cairo.get()); status != CAIRO_STATUS_SUCCESS)
            return failure(status);
        const auto status = cairo_surface_write_to_png_stream(surface.get(), handOn, &output);
        if (status != CAIRO_STATUS_SUCCESS) return failure(status);
        result.isWritten = true;
        return result;
    }

    PictureResult writePdf(const Scene& scene, const PictureOptions& options, Output& output) override {
        const double width = std::ceil(scene.size.width) * pointsPerPixel;
        const double height = std::ceil(scene.size.height) * pointsPerPixel;
        const bool hasPaper = options.paper != Paper::none;
        const PagePlan plan = hasPaper ? planPages(scene.size, options.paper) : PagePlan{};
        PictureResult result;
        result.scale = hasPaper ? plan.scale : std::min({1.0, maxPdfSide / width, maxPdfSide / height});
        if (result.scale < minPdfScale)
            return tooLarge(std::ceil(scene.size.width), std::ceil(scene.size.height), result.scale);
        const Size page = hasPaper ? plan.paper : Size{width * result.scale, height * result.scale};
        const Surface surface(cairo_pdf_surface_create_for_stream(handOn, &output, page.width, page.height));
        const std::string title = titleOf(scene);
        cairo_pdf_surface_set_metadata(surface.get(), CAIRO_PDF_METADATA_TITLE, title.c_str());
        // The same drawing must give the same bytes, so the date is fixed.
        cairo_pdf_surface_set_metadata(surface.get(), CAIRO_PDF_METADATA_CREATE_DATE, "1970-01-01T00:00:00Z");
        const Context cairo(cairo_create(surface.get()));
        const bool isPainted = hasPaper ? paintPages(cairo.get(), scene, options, plan, result)
                                        : paintPage(cairo.get(), scene, options, result);
        // Finished before the status is read: the last bytes are written now.
        cairo_surface_finish(surface.get());
        if (!isPainted) return {};
        for (const auto status : {cairo_status(cairo.get()), cairo_surface_status(surface.get())})
            if (status != CAIRO_STATUS_SUCCESS) return failure(status);
        result.isWritten = true;
        return result;
    }
};

}  // namespace
}  // namespace tessera_draw

extern "C" __attribute__((visibility("default"))) tessera_draw::PictureWriter* tesseraPictureWriter() {
    static tessera_draw::CairoWriter writer;
    return &writer;
}
