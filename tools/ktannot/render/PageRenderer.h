#pragma once

/// @file
/// Drawings as PNG pictures and PDF pages.

#include <memory>
#include <string>
#include <string_view>

namespace ktannot {

/// Draws SVG files as PNG pictures and PDF pages. What it draws with lives in a module of its own, so that the tool and
/// the libraries need none of it: see RenderModule. Belongs to one thread at a time. Functions that give a text give
/// why it did not work, empty when it did.
class PageRenderer {
public:
    /// What a PDF file tells about itself.
    struct PdfInfo {
        std::string mTitle;
        std::string mSource;   ///< the document that it is drawn from
        std::string mCreator;  ///< the program
    };

    PageRenderer() = default;
    PageRenderer(const PageRenderer&) = delete;
    PageRenderer& operator=(const PageRenderer&) = delete;
    virtual ~PageRenderer() = default;

    /// Draws a file as a picture in its natural size.
    /// @param png  replaced.
    virtual std::string drawPng(std::string_view svg, double dotsPerInch, std::string& png) = 0;

    /// Begins a PDF file; one that is begun already is dropped.
    virtual void beginPdf(const PdfInfo& info) = 0;
    /// Adds a page in the drawing's size, or smaller where that is more than 200 inches, the most that readers take.
    virtual std::string addPdfPage(std::string_view svg) = 0;
    /// @param pdf  replaced by the file.
    virtual std::string finishPdf(std::string& pdf) = 0;
};

/// The module's one function, of this name.
using CreatePageRenderer = PageRenderer*();
inline constexpr const char* sCreatePageRenderer = "ktannotCreatePageRenderer";

}  // namespace ktannot
