#include "tests/robustness/Drawings.h"

#include "migration/ktAnnotationMigration.h"
#include "platform/annotation/ktCadViewSvgWriter.h"
#include "platform/system/ktLog.h"

#include <expat.h>

#include <vector>

namespace ktTest {

namespace {

class SilentLog : public kt::ktLog {
public:
    SilentLog() : mPrevious(msInstance.exchange(this)) {}
    ~SilentLog() override { msInstance = mPrevious; }
    void log(const kt::ktLogEntry&) noexcept override {}

private:
    kt::ktLog* mPrevious;
};

bool giveRaster(const std::string& name, std::string& data, void*) {
    data = name;
    return true;
}

std::string findXmlError(const std::string& text) {
    std::string error;
    XML_Parser parser = XML_ParserCreate("UTF-8");
    if (XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1) != XML_STATUS_OK) {
        error = std::string(XML_ErrorString(XML_GetErrorCode(parser))) + " at byte " +
                std::to_string(XML_GetCurrentByteIndex(parser)) + " of " + text;
    }
    XML_ParserFree(parser);
    return error;
}

}  // namespace

Drawings draw(const ktannot::LegacyDocument& document) {
    constexpr int acceptAll = 7;
    constexpr float headSize = 3.0F;
    ktLegacy::ktAnnotationMigration migration(acceptAll, giveRaster, nullptr, headSize);
    const SilentLog log;
    Drawings drawings;
    for (const ktannot::LegacyDocument::View& view : document.getViews()) {
        kt::ktPointer<kt::ktCadAnnotationView> migrated;
        if (!migration.migrateAnnotationView(view.mView, migrated)) {
            continue;
        }
        std::string file;
        std::vector<std::string> warnings;
        kt::ktCadViewSvgWriter(kt::ktCadViewSvgWriter::Options()).write(*migrated, file, warnings);
        ++drawings.mCount;
        if (drawings.mXmlError.empty()) {
            drawings.mXmlError = findXmlError(file);
        }
    }
    return drawings;
}

}  // namespace ktTest
