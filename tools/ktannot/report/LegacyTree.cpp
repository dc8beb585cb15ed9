#include "tools/ktannot/report/LegacyTree.h"

#include "legacy/ktAnnotationRaster.h"
#include "legacy/ktAnnotationText.h"
#include "platform/encoding/Hex.h"
#include "tools/ktannot/console/TerminalText.h"
#include "tools/ktannot/report/DocumentCensus.h"
#include "tools/ktannot/report/FindingText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <string_view>
#include <utility>

namespace ktannot {

using ktLegacy::ktAnnotationInterface;
using ktLegacy::ktAnnotationRaster;
using ktLegacy::ktAnnotationText;
using ktLegacy::ktLegacyDocument;

namespace {

constexpr std::size_t sMaxNameLength = 60;
constexpr std::size_t sMaxTextLength = 40;

constexpr std::array<std::string_view, 15> sFrames{
    "no frame",      "rectangle", "square",   "diamond", "triangle", "flag right",  "flag left",   "flag both",
    "parallelogram", "hexagon",   "pentagon", "circle",  "oblong",   "oblong left", "oblong right"};
constexpr std::array<std::string_view, 7> sHeads{"no head", "square", "circle", "arrow", "plus", "cross", "triangle"};
constexpr std::array<std::string_view, 4> sArrows{"arrows unspecified", "arrows out-out", "arrows in-out",
                                                  "arrows out-in"};
constexpr std::array<std::string_view, 13> sAnchors{
    "free",        "bottom left", "bottom centre", "bottom right", "top left",     "top centre", "top right",
    "left bottom", "left centre", "left top",      "right bottom", "right centre", "right top"};

/// The word of a code, or the code itself: streams may hold any.
template <std::size_t Count>
std::string getWord(const std::array<std::string_view, Count>& words, std::int64_t code) {
    const bool isKnown = code >= 0 && static_cast<std::size_t>(code) < Count;
    return isKnown ? std::string(words[static_cast<std::size_t>(code)]) : "code " + std::to_string(code);
}

std::string formatNumber(float value) {
    std::array<char, 40> digits{};
    return {digits.data(), std::to_chars(digits.begin(), digits.end(), value).ptr};
}

std::string formatVector(const Wm4::Vector3<float>& vector) {
    return "(" + formatNumber(vector[0]) + ", " + formatNumber(vector[1]) + ", " + formatNumber(vector[2]) + ")";
}

std::string formatColor(const Wm4::Vector3<unsigned char>& color) {
    std::string text = "#";
    for (int index = 0; index < 3; ++index) {
        kt::encoding::appendHex(text, color[index], 2);
    }
    return text;
}

std::string quote(std::string_view text, std::size_t maxCharacters) {
    return "'" + makeTerminalText(text, maxCharacters) + "'";
}

std::string describeMetadata(const kt::ktVariant::ktVariantMapImpl& metadata) {
    return metadata.empty() ? "" : "  metadata " + std::to_string(metadata.size());
}

/// The beginning of the text, lines joined by a stroke.
std::string describeWords(const ktAnnotationText& text) {
    // Enough bytes for the characters shown, whatever they are.
    constexpr std::size_t sMaxBytes = 8 * sMaxTextLength;
    std::string words;
    for (const ktAnnotationText::Line& line : text.mLines) {
        words += words.empty() ? "" : " / ";
        for (const ktAnnotationText::TextSegment& segment : line) {
            words.append(segment.getText(), std::min<std::size_t>(segment.mLength, sMaxBytes));
        }
        if (words.size() > sMaxBytes) {
            break;
        }
    }
    return words.empty() ? "without text" : "\"" + makeTerminalText(words, sMaxTextLength) + "\"";
}

std::string describeLeader(const ktAnnotationInterface::Leader& leader) {
    return "leader to " + formatVector(leader.mPosition) + "  " + getWord(sHeads, leader.mHead);
}

std::string describeMeasure(const ktAnnotationInterface::MeasureLeader& measure) {
    return "measure " + formatVector(measure.mPointA) + " to " + formatVector(measure.mPointB) + "  offset " +
           formatVector(measure.mOffsetVector) + "  " + getWord(sArrows, measure.mArrowDirection);
}

std::string describeDocument(const SourceDocument& source) {
    DocumentCensus census;
    census.add(source);
    const bool isStream = source.mDocument.getKind() == ktLegacyDocument::Kind::Stream;
    return (isStream ? "binary document of version " + source.mDocument.getVersion().toString()
                     : std::string("variant document")) +
           ", " + census.describeContent();
}

/// What is wrong, by view; what belongs to no view comes last.
std::vector<std::vector<std::string>> groupFindings(const ktLegacyDocument& document) {
    std::vector<std::vector<ktLegacy::ktLegacyFinding>> groups(document.getViews().size() + 1);
    for (ktLegacy::ktLegacyFinding finding : document.getFindings()) {
        std::vector<ktLegacy::ktLegacyFinding>& group = groups[finding.mView.value_or(groups.size() - 1)];
        // It stands under its view.
        finding.mView.reset();
        group.push_back(std::move(finding));
    }
    std::vector<std::vector<std::string>> findings;
    for (const std::vector<ktLegacy::ktLegacyFinding>& group : groups) {
        findings.push_back(describeFindings(group));
    }
    return findings;
}

}  // namespace

void LegacyTree::print(const SourceDocument& document) {
    const std::vector<ktLegacyDocument::View>& views = document.mDocument.getViews();
    const std::vector<std::vector<std::string>> findings = groupFindings(document.mDocument);
    mTree.root(mTree.paint(TextTree::Style::Heading, makeTerminalText(document.mSource)) + "  " +
               describeDocument(document));
    mTree.enter(views.size() + findings.back().size());
    for (std::size_t index = 0; index < views.size(); ++index) {
        printView(views[index], index + 1, findings[index]);
    }
    printFindings(findings.back());
    mTree.leave();
}

void LegacyTree::printView(const ktLegacyDocument::View& view, std::size_t number,
                           const std::vector<std::string>& findings) {
    mTree.line(describeView(view, number));
    mTree.enter((view.mView ? view.mView->mAnnotations.size() : 0) + findings.size());
    if (view.mView) {
        for (const kt::ktPointer<ktAnnotationInterface>& annotation : view.mView->mAnnotations) {
            printAnnotation(annotation.get(), "");
        }
    }
    printFindings(findings);
    mTree.leave();
}

void LegacyTree::printFindings(const std::vector<std::string>& findings) {
    for (const std::string& finding : findings) {
        mTree.line(mTree.paint(TextTree::Style::Problem, "! " + finding));
    }
}

// The readers bound the nesting of annotations, so recursion is safe here.
void LegacyTree::printAnnotation(const ktAnnotationInterface* annotation, const std::string& anchor) {
    if (annotation == nullptr) {
        mTree.line(anchor + mTree.paint(TextTree::Style::Problem, "missing annotation"));
        return;
    }
    mTree.line(describeAnnotation(*annotation, anchor));
    mTree.enter(annotation->mLeaders.size() + annotation->mMeasureLeaders.size() + annotation->getSubAnnotsCount());
    for (const ktAnnotationInterface::Leader& leader : annotation->mLeaders) {
        mTree.line(mTree.paint(TextTree::Style::Detail, describeLeader(leader)));
    }
    for (const ktAnnotationInterface::MeasureLeader& measure : annotation->mMeasureLeaders) {
        mTree.line(mTree.paint(TextTree::Style::Detail, describeMeasure(measure)));
    }
    for (const ktAnnotationInterface::SubAnnot& child : annotation->getSubAnnots()) {
        printAnnotation(child.mAnnotation.get(), "[" + getWord(sAnchors, child.mAnchorLocation) + "] ");
    }
    mTree.leave();
}

std::string LegacyTree::describeView(const ktLegacyDocument::View& view, std::size_t number) const {
    const std::string head = "view " + std::to_string(number);
    if (!view.mView) {
        return head + mTree.paint(TextTree::Style::Problem, " could not be made");
    }
    const ktLegacy::ktAnnotationView& content = *view.mView;
    return head + " " + mTree.paint(TextTree::Style::Name, quote(content.mName, sMaxNameLength)) +
           (view.mObject ? "" : "  version " + view.mVersion.toString()) + "  origin " + formatVector(content.mOrigin) +
           "  normal " + formatVector(content.mNormal) + "  axis " + formatVector(content.mAxis) +
           describeMetadata(content.mMetadata);
}

std::string LegacyTree::describeAnnotation(const ktAnnotationInterface& annotation, const std::string& anchor) const {
    std::string kind = "text";
    std::string content;
    if (const auto* text = dynamic_cast<const ktAnnotationText*>(&annotation)) {
        content = describeWords(*text);
    } else if (const auto* raster = dynamic_cast<const ktAnnotationRaster*>(&annotation)) {
        kind = "raster";
        content = "image " + quote(raster->mRasterName, sMaxNameLength) + " " + formatNumber(raster->mSizeEm[0]) +
                  " x " + formatNumber(raster->mSizeEm[1]) + " em";
    }
    return anchor + kind + " " + mTree.paint(TextTree::Style::Name, quote(annotation.mName, sMaxNameLength)) + " at " +
           formatVector(annotation.mPosition) + "  " + getWord(sFrames, annotation.mFrameShape) + "  " +
           formatColor(annotation.mColor) + describeMetadata(annotation.mMetadata) + "  " + content;
}

}  // namespace ktannot
