/// @file
/// From the bytes of a document of either kind to its drawings and dumps. Contract: nothing worse than refused views,
/// and every drawing is well-formed XML.

#include "library/ktAnnotationLegacyLibrary.h"
#include "migration/ktAnnotationMigration.h"
#include "platform/annotation/ktCadViewSvgWriter.h"
#include "platform/system/log/ktLog.h"
#include "tools/ktannot/LegacyDocument.h"
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

bool provideRaster(const std::string& rasterName, std::string& rasterData, void*) {
    // The name doubles as the picture, so that the input decides about it.
    rasterData = rasterName;
    return true;
}

bool isWellFormed(const std::string& text) {
    XML_Parser parser = XML_ParserCreate("UTF-8");
    const XML_Status status = XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1);
    XML_ParserFree(parser);
    return status == XML_STATUS_OK;
}

void writeDrawings(const kt::ktCadAnnotationView& view) {
    using TextMode = kt::svg::SvgWriter::TextMode;
    for (const TextMode mode : {TextMode::Text, TextMode::Outlines}) {
        kt::ktCadViewSvgWriter::Options options;
        options.mTextMode = mode;
        std::string file;
        kt::ktCadViewSvgWriter(options).write(view, file);
        if (!isWellFormed(file)) {
            std::abort();
        }
    }
    ktannot::TextOutput dump;
    ktannot::JsonWriter json(dump);
    ktannot::writeCadViewJson(json, &view);
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
    constexpr int acceptAll = 7;
    constexpr float headSize = 3.0F;
    // Far less than documents may take, so that runs with claims of memory stay short; sound inputs need less still.
    constexpr std::uint64_t memoryLimit = 1U << 20U;
    static ktLegacy::ktAnnotationMigration sMigration(acceptAll, provideRaster, nullptr, headSize);
    const auto document = ktannot::LegacyDocument::load("fuzz", std::as_bytes(std::span(data, size)), memoryLimit);
    for (const ktannot::LegacyDocument::View& view : document.getViews()) {
        kt::ktPointer<kt::ktCadAnnotationView> migrated;
        if (sMigration.migrateAnnotationView(view.mView, migrated)) {
            writeDrawings(*migrated);
        }
    }
    return 0;
}
