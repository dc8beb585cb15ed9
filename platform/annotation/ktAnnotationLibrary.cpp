#include "platform/annotation/ktAnnotationLibrary.h"

#include "platform/annotation/FontCatalog_p.h"
#include "platform/annotation/TextProperties.h"
#include "platform/system/LibInitCounter.h"
#include "platform/system/ktSystem.h"

namespace kt {

namespace {

impl::LibInitCounter& getInitCounter() {
    static impl::LibInitCounter sCounter("annotation", true);
    return sCounter;
}

}  // namespace

void initializeKtAnnotationLibrary(bool preloadFonts) {
    // Made before the use is counted, so that the termination need not allocate.
    text::FontCatalog& fonts = text::FontCatalog::getInstance();
    if (getInitCounter().incrementInitCounter()) {
        initializeKtSystem(InitType::Full, false);
    }
    if (preloadFonts) {
        try {
            fonts.getStack(text::TextProperties().mFontName, 0)->getMainFont();
        } catch (...) {
            terminateKtAnnotationLibrary();
            throw;
        }
    }
}

void terminateKtAnnotationLibrary() {
    if (getInitCounter().decrementInitCounter()) {
        text::FontCatalog::getInstance().clear();
        terminateKtSystem();
    }
}

}  // namespace kt
