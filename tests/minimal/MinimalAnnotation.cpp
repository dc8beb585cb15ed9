#include "platform/annotation/TextArea.h"
#include "platform/annotation/TextSegmentToSvgConverter.h"
#include "platform/annotation/ktAnnotationLibrary.h"
#include "platform/svg/Rect.h"
#include "platform/system/LibInitCounter.h"
#include "platform/system/ktSystem.h"

#include <algorithm>
#include <memory>

namespace kt {

namespace {
impl::LibInitCounter sInitCounter("annotation", true);
}

void initializeKtAnnotationLibrary(bool /*preloadFonts*/) {
    if (sInitCounter.incrementInitCounter()) {
        initializeKtSystem(InitType::Full, false);
    }
}

void terminateKtAnnotationLibrary() {
    if (sInitCounter.decrementInitCounter()) {
        terminateKtSystem();
    }
}

namespace text {

class TextSegmentToSvgConverter::Layout {};

TextSegmentToSvgConverter::TextSegmentToSvgConverter() = default;
TextSegmentToSvgConverter::~TextSegmentToSvgConverter() = default;

std::vector<FontProblem> TextSegmentToSvgConverter::takeFontProblems() const { return {}; }

/// A rectangle of half an em for each byte.
bool TextSegmentToSvgConverter::convertTextAreaToSvg(const TextArea& area, svg::Node& target, Wm4::Vector2<float>* size,
                                                     const char* boundingBoxId) const {
    std::size_t width = 0;
    for (const TextArea::Line& line : area.mLines) {
        std::size_t bytes = 0;
        for (const TextSegment& segment : line) {
            bytes += segment.getText().size();
        }
        width = std::max(width, bytes);
    }
    const float em = area.mDefaultProperties.mFontSize;
    const Wm4::Vector2<float> extent(static_cast<float>(width) * em / 2, static_cast<float>(area.mLines.size()) * em);
    if (width != 0 && boundingBoxId != nullptr) {
        auto box = std::make_shared<svg::Rect>(Wm4::Vector2<float>::ZERO, extent);
        box->setId(boundingBoxId);
        target.appendChild(std::move(box));
    }
    if (size != nullptr) {
        *size = extent;
    }
    return true;
}

}  // namespace text

}  // namespace kt
