#include "migration/Allocation_p.h"
#include "migration/SvgColor_p.h"
#include "migration/Units_p.h"
#include "migration/Workspace_p.h"

#include <memory>
#include <string_view>
#include <utility>

namespace ktLegacy {

namespace {

using kt::text::TextArea;
using LegacySegment = ktAnnotationText::TextSegment;

/// Sets everything but the colour: only the area's default properties receive the annotation's text colour, segments
/// with properties of their own keep the default one. Intended.
void convertProperties(const ktAnnotationText::TextProperties& legacy, kt::text::TextProperties& properties) {
    constexpr int styleMask = kt::text::TextProperties::sBold | kt::text::TextProperties::sItalic;
    properties.mFontName = legacy.mFontName;
    properties.mFontSize = legacy.getHeightEm() * migration::sUnitsPerEm;
    properties.mStyle = static_cast<std::uint8_t>((properties.mStyle & ~styleMask) | (legacy.mStyle & styleMask));
}

kt::text::TextSegment::SegmentType convertType(LegacySegment::SegmentType type) {
    switch (type) {
        case LegacySegment::Subscript:
            return kt::text::TextSegment::Subscript;
        case LegacySegment::Superscript:
            return kt::text::TextSegment::Superscript;
        default:
            return kt::text::TextSegment::Normal;
    }
}

/// Tabs and all other bytes but the space count as content.
bool isBlank(const LegacySegment& segment) {
    return std::string_view(segment.getText(), segment.mLength).find_first_not_of(' ') == std::string_view::npos;
}

/// Converts the segments that are not blank.
void convertLine(const ktAnnotationText::Line& legacyLine, TextArea::Line& line) {
    std::size_t count = 0;
    for (const LegacySegment& legacy : legacyLine) {
        if (isBlank(legacy)) {
            continue;
        }
        kt::text::TextSegment& segment = count < line.size() ? line[count] : line.emplace_back();
        ++count;
        segment.clearProperties();
        if (legacy.mProperties != nullptr) {
            kt::text::TextProperties properties;
            convertProperties(*legacy.mProperties, properties);
            segment.setProperties(std::move(properties));
        }
        segment.setType(convertType(legacy.mType));
        segment.setText(legacy.getText(), legacy.mLength);
    }
    line.resize(count);
}

/// Lines without content are dropped, also between others; a text without any becomes one blank.
void convertText(const ktAnnotationText& text, const Wm4::Vector3<unsigned char>& colour, TextArea& area) {
    convertProperties(text.mDefaultTextProperties, area.mDefaultProperties);
    area.mDefaultProperties.mColor = colour;

    std::size_t lineCount = 0;
    for (const ktAnnotationText::Line& legacyLine : text.mLines) {
        TextArea::Line& line = lineCount < area.mLines.size() ? area.mLines[lineCount] : area.mLines.emplace_back();
        convertLine(legacyLine, line);
        lineCount += line.empty() ? 0U : 1U;
    }
    area.mLines.resize(lineCount);
    if (lineCount == 0) {
        area.mLines.emplace_back().emplace_back(" ", kt::text::TextSegment::Normal, nullptr);
    }
}

}  // namespace

bool ktAnnotationMigration::migrateTextAnnotation(const ktAnnotationText* text, kt::svg::Node& parent,
                                                  const Wm4::Vector3<unsigned char>& colour) {
    auto group = migration::makeItem<kt::svg::Node>();
    group->setColor(migration::colorToSvgString(colour));
    convertText(*text, colour, mWorkspace->mText);
    if (!mWorkspace->mTextConverter.convertTextAreaToSvg(mWorkspace->mText, *group, nullptr, "dummyTxtBB")) {
        return false;
    }
    // Text is laid out with y pointing up, the drawing has it pointing down.
    group->setTransform({{1.0F, 0.0F, 0.0F, -1.0F}, Wm4::Vector2<float>::ZERO});
    parent.appendChild(std::move(group));
    return true;
}

std::vector<kt::text::FontProblem> ktAnnotationMigration::takeFontProblems() {
    return mWorkspace->mTextConverter.takeFontProblems();
}

}  // namespace ktLegacy
