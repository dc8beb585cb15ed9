#include "tools/ktannot/render/PageRenderer.h"

#include <cairo-pdf.h>
#include <cairo.h>
#include <librsvg/rsvg.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace ktannot {

namespace {

constexpr double sPointsPerInch = 72.0;
constexpr double sMillimetresPerInch = 25.4;
/// The largest page that readers of PDF take, in points.
constexpr double sMaxPageSide = 14'400.0;
/// Largest pictures: 1 GB of memory; no side may be longer than Cairo draws.
constexpr double sMaxPixelCount = 250e6;
constexpr double sMaxPixelSide = 32'767.0;

template <auto function>
struct Deleter {
    template <typename Object>
    void operator()(Object* object) const {
        function(object);
    }
};
using Context = std::unique_ptr<cairo_t, Deleter<cairo_destroy>>;
using Surface = std::unique_ptr<cairo_surface_t, Deleter<cairo_surface_destroy>>;
using Handle = std::unique_ptr<RsvgHandle, Deleter<g_object_unref>>;
using Stream = std::unique_ptr<GInputStream, Deleter<g_object_unref>>;

/// Takes over an error and gives its text.
std::string takeText(GError* error) {
    const std::string text = error != nullptr ? error->message : "unknown error";
    g_clear_error(&error);
    return text;
}

/// An SVG file that is ready to be drawn.
class Drawing {
public:
    std::string load(std::string_view svg) {
        const Stream stream(g_memory_input_stream_new_from_data(svg.data(), static_cast<gssize>(svg.size()), nullptr));
        GError* error = nullptr;
        mHandle.reset(
            rsvg_handle_new_from_stream_sync(stream.get(), nullptr, RSVG_HANDLE_FLAG_UNLIMITED, nullptr, &error));
        if (mHandle == nullptr) {
            return "librsvg cannot read the drawing: " + takeText(error);
        }
        gboolean hasWidth = FALSE;
        gboolean hasHeight = FALSE;
        RsvgLength width{};
        RsvgLength height{};
        rsvg_handle_get_intrinsic_dimensions(mHandle.get(), &hasWidth, &width, &hasHeight, &height, nullptr, nullptr);
        if (hasWidth == FALSE || hasHeight == FALSE || width.unit != RSVG_UNIT_MM || height.unit != RSVG_UNIT_MM) {
            return "the drawing has no size in millimetres";
        }
        mWidth = width.length / sMillimetresPerInch;
        mHeight = height.length / sMillimetresPerInch;
        return {};
    }

    double getWidth() const { return mWidth; }    ///< in inches
    double getHeight() const { return mHeight; }  ///< in inches

    std::string draw(cairo_t* context, double width, double height) const {
        const RsvgRectangle page{0.0, 0.0, width, height};
        GError* error = nullptr;
        if (rsvg_handle_render_document(mHandle.get(), context, &page, &error) == FALSE) {
            return "librsvg cannot draw it: " + takeText(error);
        }
        return {};
    }

private:
    Handle mHandle;
    double mWidth = 0.0;
    double mHeight = 0.0;
};

cairo_status_t appendBytes(void* text, const unsigned char* bytes, unsigned size) {
    static_cast<std::string*>(text)->append(reinterpret_cast<const char*>(bytes), size);
    return CAIRO_STATUS_SUCCESS;
}

std::string getProblem(cairo_status_t status) {
    return status == CAIRO_STATUS_SUCCESS ? std::string() : std::string("Cairo: ") + cairo_status_to_string(status);
}

/// Draws with librsvg and Cairo.
class CairoPageRenderer final : public PageRenderer {
public:
    std::string drawPng(std::string_view svg, double dotsPerInch, std::string& png) override;
    void beginPdf(const PdfInfo& info) override;
    std::string addPdfPage(std::string_view svg) override;
    std::string finishPdf(std::string& pdf) override;

private:
    std::string mPdf;  ///< written to by the surface
    Surface mPdfSurface;
    Context mPdfContext;
};

std::string CairoPageRenderer::drawPng(std::string_view svg, double dotsPerInch, std::string& png) {
    Drawing drawing;
    if (std::string problem = drawing.load(svg); !problem.empty()) {
        return problem;
    }
    const double width = std::max(1.0, std::round(drawing.getWidth() * dotsPerInch));
    const double height = std::max(1.0, std::round(drawing.getHeight() * dotsPerInch));
    if (!(width <= sMaxPixelSide && height <= sMaxPixelSide && width * height <= sMaxPixelCount)) {
        const double scale =
            std::min({1.0, sMaxPixelSide / std::max(width, height), std::sqrt(sMaxPixelCount / width / height)});
        return "its picture would be too large, at most 32,767 pixels a side and 250,000,000 in all are drawn: choose "
               "--dpi " +
               std::to_string(std::max(1, static_cast<int>(std::floor(dotsPerInch * scale)))) + " or less";
    }
    const Surface surface(
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(width), static_cast<int>(height)));
    const Context context(cairo_create(surface.get()));
    // Stretched by less than a pixel, so that the page reaches the picture's edges.
    const double pageWidth = drawing.getWidth() * dotsPerInch;
    const double pageHeight = drawing.getHeight() * dotsPerInch;
    cairo_scale(context.get(), width / pageWidth, height / pageHeight);
    std::string problem = drawing.draw(context.get(), pageWidth, pageHeight);
    if (problem.empty()) {
        png.clear();
        problem = getProblem(cairo_surface_write_to_png_stream(surface.get(), appendBytes, &png));
    }
    return problem;
}

void CairoPageRenderer::beginPdf(const PdfInfo& info) {
    mPdfContext.reset();
    mPdfSurface.reset();
    mPdf.clear();
    mPdfSurface.reset(cairo_pdf_surface_create_for_stream(appendBytes, &mPdf, 1.0, 1.0));
    mPdfContext.reset(cairo_create(mPdfSurface.get()));
    const auto set = [this](cairo_pdf_metadata_t key, const std::string& text) {
        cairo_pdf_surface_set_metadata(mPdfSurface.get(), key, text.c_str());
    };
    set(CAIRO_PDF_METADATA_TITLE, info.mTitle);
    set(CAIRO_PDF_METADATA_SUBJECT, "drawn from " + info.mSource);
    set(CAIRO_PDF_METADATA_CREATOR, info.mCreator);
    // Equal input gives equal bytes: the time of drawing has no place in it.
    set(CAIRO_PDF_METADATA_CREATE_DATE, "1970-01-01T00:00:00Z");
}

std::string CairoPageRenderer::addPdfPage(std::string_view svg) {
    Drawing drawing;
    if (std::string problem = drawing.load(svg); !problem.empty()) {
        return problem;
    }
    const double naturalSide = std::max(drawing.getWidth(), drawing.getHeight()) * sPointsPerInch;
    const double pointsPerInch = sPointsPerInch * std::min(1.0, sMaxPageSide / naturalSide);
    const double width = drawing.getWidth() * pointsPerInch;
    const double height = drawing.getHeight() * pointsPerInch;
    cairo_pdf_surface_set_size(mPdfSurface.get(), width, height);
    std::string problem = drawing.draw(mPdfContext.get(), width, height);
    cairo_show_page(mPdfContext.get());
    return problem.empty() ? getProblem(cairo_status(mPdfContext.get())) : problem;
}

std::string CairoPageRenderer::finishPdf(std::string& pdf) {
    mPdfContext.reset();
    cairo_surface_finish(mPdfSurface.get());
    const std::string problem = getProblem(cairo_surface_status(mPdfSurface.get()));
    mPdfSurface.reset();
    pdf = std::move(mPdf);
    return problem;
}

}  // namespace

}  // namespace ktannot

extern "C" __attribute__((visibility("default"))) ktannot::PageRenderer* ktannotCreatePageRenderer() {
    return new ktannot::CairoPageRenderer();
}
