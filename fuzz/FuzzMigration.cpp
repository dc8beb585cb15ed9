/// @file
/// From the bytes of a document of either kind to its drawings and dumps. Contract: nothing worse than refused views,
/// and every drawing is well-formed XML.

#include "document/ktLegacyDocument.h"
#include "document/ktViewDrawing.h"
#include "library/ktAnnotationLegacyLibrary.h"
#include "platform/system/log/ktLog.h"
#include "tools/ktannot/report/CadJson.h"
#include "tools/ktannot/report/JsonWriter.h"

#include <expat.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

namespace {

/// Failures of the migration are what the inputs are made for.
class SilentLog : public kt::ktLog {
public:
    void log(const kt::ktLogEntry&) noexcept override {}
};

bool isWellFormed(const std::string& text) {
    XML_Parser parser = XML_ParserCreate("UTF-8");
    const XML_Status status = XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1);
    XML_ParserFree(parser);
    return status == XML_STATUS_OK;
}

using ktLegacy::ktViewDrawing;

ktViewDrawing makeDrawing(kt::svg::SvgWriter::TextMode mode) {
    ktViewDrawing::Options options;
    options.mAccepted =
        ktViewDrawing::AcceptViewMetadata | ktViewDrawing::AcceptKnownMetadata | ktViewDrawing::AcceptOtherMetadata;
    options.mWriter.mTextMode = mode;
    // The name doubles as the picture, so that the input decides about it.
    return ktViewDrawing(options, [](const std::string& name, std::string& data) {
        data = name;
        return true;
    });
}

void expectWellFormed(ktViewDrawing& drawing, const ktLegacy::ktAnnotationView& view) {
    if (drawing.draw(view) && !isWellFormed(drawing.getSvg())) {
        std::abort();
    }
}

void dump(ktViewDrawing& drawing, const ktLegacy::ktAnnotationView& view) {
    if (const auto migrated = drawing.migrate(view)) {
        ktannot::TextOutput text;
        ktannot::JsonWriter json(text);
        ktannot::writeCadViewJson(json, migrated.get());
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // Never destroyed: the library may log until the process ends.
    static auto* const sLog = new SilentLog;
    kt::initializeKtAnnotationLegacyLibrary();
    kt::ktLog::msInstance = sLog;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Far less than documents may take, so that runs with claims of memory stay short; sound inputs need less still.
    constexpr std::uint64_t memoryLimit = 1U << 20U;
    using TextMode = kt::svg::SvgWriter::TextMode;
    static ktViewDrawing sText = makeDrawing(TextMode::Text);
    static ktViewDrawing sOutlines = makeDrawing(TextMode::Outlines);
    const auto document = ktLegacy::ktLegacyDocument::read(std::as_bytes(std::span(data, size)),
                                                           {.mMemoryLimit = memoryLimit, .mIsMapped = false});
    for (const ktLegacy::ktLegacyDocument::View& view : document.getViews()) {
        if (view.mView != nullptr) {
            expectWellFormed(sText, *view.mView);
            expectWellFormed(sOutlines, *view.mView);
            dump(sText, *view.mView);
        }
    }
    return 0;
}
