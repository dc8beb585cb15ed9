/// @file
/// The front door whole: from the bytes of a document of either kind to its drawings, dumps and findings. Contract:
/// whatever is not loaded or drawn has a finding with a sentence, every drawing is well-formed XML that refers to
/// nothing outside itself, and drawing a view while releasing it gives the same bytes.

#include "document/ktLegacyDocument.h"
#include "document/ktViewDrawing.h"
#include "fuzz/ReadBack.h"
#include "library/ktAnnotationLegacyLibrary.h"
#include "platform/system/log/ktLog.h"
#include "tools/ktannot/report/CadJson.h"
#include "tools/ktannot/report/JsonWriter.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <vector>

namespace {

/// Failures of the migration are what the inputs are made for.
class SilentLog : public kt::ktLog {
public:
    void log(const kt::ktLogEntry&) noexcept override {}
};

void expect(bool condition) {
    if (!condition) {
        std::abort();
    }
}

bool haveSentences(const std::vector<ktLegacy::ktLegacyFinding>& findings) {
    return std::ranges::none_of(findings, [](const auto& finding) { return finding.mWhat.empty(); });
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

/// The drawing; empty when the view was refused.
std::string draw(ktViewDrawing& drawing, const ktLegacy::ktAnnotationView& view) {
    const bool isDrawn = drawing.draw(view);
    expect(haveSentences(drawing.getFindings()));
    expect(isDrawn ? drawing.getReason().empty() : !drawing.getReason().empty() && !drawing.getFindings().empty());
    std::string svg = drawing.getSvg();
    const ktFuzz::DrawingFacts facts = ktFuzz::readBack(svg);
    expect(isDrawn ? facts.mIsWellFormed && facts.mIsSelfContained : svg.empty());
    return svg;
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
    expect(haveSentences(document.getFindings()));
    expect(document.isLoaded() || (!document.getFindings().empty() && !document.getReason().empty()));
    for (const ktLegacy::ktLegacyDocument::View& view : document.getViews()) {
        if (view.mView != nullptr) {
            draw(sText, *view.mView);
            dump(sText, *view.mView);
            const std::string whole = draw(sOutlines, *view.mView);
            expect(sOutlines.drawAndRelease(*view.mView) == !whole.empty() && sOutlines.getSvg() == whole);
        }
    }
    return 0;
}
