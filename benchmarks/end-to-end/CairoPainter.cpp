#include "benchmarks/end-to-end/Painter.h"

#include <cairo-svg.h>
#include <pango/pangocairo.h>

#include <map>
#include <utility>

namespace ktBenchmark {

namespace {

class CairoPainter : public Painter {
public:
    CairoPainter(const FlatDrawing& drawing, TextWork work) : mDrawing(drawing), mWork(work) {
        for (const FlatDrawing::TextRun& run : drawing.mTexts) {
            PangoFontDescription*& font = mFonts[{run.mFont, run.mSize}];
            if (font == nullptr) {
                font = pango_font_description_new();
                pango_font_description_set_family(font, run.mFont.c_str());
                pango_font_description_set_absolute_size(font, run.mSize * PANGO_SCALE);
            }
            mFontOfTexts.push_back(font);
        }
    }
    ~CairoPainter() override {
        for (const auto& [key, font] : mFonts) {
            pango_font_description_free(font);
        }
    }

    std::string paint() override {
        std::string file;
        cairo_surface_t* surface = cairo_svg_surface_create_for_stream(
            append, &file, mDrawing.mHigh.x - mDrawing.mLow.x, mDrawing.mHigh.y - mDrawing.mLow.y);
        cairo_t* context = cairo_create(surface);
        cairo_translate(context, -mDrawing.mLow.x, -mDrawing.mLow.y);
        cairo_set_line_width(context, 0.25);
        for (const FlatDrawing::Outline& line : mDrawing.mLines) {
            draw(context, line);
            cairo_stroke(context);
        }
        for (const FlatDrawing::Outline& outline : mDrawing.mOutlines) {
            draw(context, outline);
            cairo_set_source_rgb(context, 1.0, 0.89, 0.71);
            cairo_fill_preserve(context);
            cairo_set_source_rgb(context, 0.0, 0.0, 0.0);
            cairo_stroke(context);
        }
        mTextWidth = 0.0;
        PangoLayout* layout = pango_cairo_create_layout(context);
        for (std::size_t index = 0; index < mDrawing.mTexts.size(); ++index) {
            const FlatDrawing::TextRun& run = mDrawing.mTexts[index];
            pango_layout_set_font_description(layout, mFontOfTexts[index]);
            pango_layout_set_text(layout, run.mText.data(), static_cast<int>(run.mText.size()));
            if (mWork == TextWork::Measure) {
                int width = 0;
                pango_layout_get_size(layout, &width, nullptr);
                mTextWidth += width;
            }
            cairo_move_to(context, run.mPosition.x, run.mPosition.y);
            pango_cairo_show_layout_line(context, pango_layout_get_line_readonly(layout, 0));
        }
        g_object_unref(layout);
        cairo_destroy(context);
        cairo_surface_finish(surface);
        cairo_surface_destroy(surface);
        return file;
    }

private:
    static cairo_status_t append(void* file, const unsigned char* data, unsigned int length) {
        static_cast<std::string*>(file)->append(reinterpret_cast<const char*>(data), length);
        return CAIRO_STATUS_SUCCESS;
    }

    static void draw(cairo_t* context, const FlatDrawing::Outline& outline) {
        for (const FlatDrawing::Point& point : outline.mPoints) {
            cairo_line_to(context, point.x, point.y);
        }
        if (outline.mIsClosed) {
            cairo_close_path(context);
        }
    }

    const FlatDrawing& mDrawing;
    TextWork mWork;
    std::map<std::pair<std::string, double>, PangoFontDescription*> mFonts;
    std::vector<const PangoFontDescription*> mFontOfTexts;
};

}  // namespace

std::unique_ptr<Painter> createCairoPainter(const FlatDrawing& drawing, TextWork work) {
    return std::make_unique<CairoPainter>(drawing, work);
}

}  // namespace ktBenchmark
