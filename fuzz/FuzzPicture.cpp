/// @file
/// Pictures as documents hold them: files or data URIs of any content. Contract: a picture is embedded or a warning
/// says why not, never both unless it is damaged; what is written is a well-formed drawing that refers to nothing
/// outside itself.

#include "fuzz/ReadBack.h"
#include "platform/svg/Image.h"
#include "platform/svg/SvgWriter.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kt::svg::Image image;
    image.setSize({10.0F, 10.0F});
    image.setSource(std::string(reinterpret_cast<const char*>(data), size));
    kt::svg::SvgWriter writer{{}};
    writer.startDocument("picture");
    writer.writeItem(image);
    std::string drawing;
    for (const std::string_view piece : writer.endDocument(kt::svg::BoundingBox{})) {
        drawing += piece;
    }
    const ktFuzz::DrawingFacts facts = ktFuzz::readBack(drawing);
    auto warnings = writer.takeWarnings();
    std::erase_if(warnings, [](const auto& warning) {
        return warning.mKind == kt::svg::SvgWriter::Warning::Kind::PictureDamaged;
    });
    if (!facts.mIsWellFormed || !facts.mIsSelfContained || facts.mPictures + warnings.size() != 1) {
        std::abort();
    }
    return 0;
}
