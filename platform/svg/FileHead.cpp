#include "platform/encoding/Utf8.h"
#include "platform/svg/FileHead_p.h"
#include "platform/svg/NumberFormat_p.h"
#include "platform/svg/TextBuffer_p.h"
#include "platform/svg/XmlText_p.h"

#include <algorithm>
#include <cmath>

namespace kt::svg {

namespace {

/// Least extent of a drawing, in millimetres: without width or height nothing would be shown.
constexpr double sMinExtent = 1.0;

/// Whether the box has corners that are numbers; its width and height may still be too large for one.
bool hasFiniteCorners(const BoundingBox& box) {
    const Wm4::Vector2<float>& lower = box.getMinPoint();
    const Wm4::Vector2<float>& upper = box.getMaxPoint();
    return !box.isEmpty() && std::isfinite(lower.x) && std::isfinite(lower.y) && std::isfinite(upper.x) &&
           std::isfinite(upper.y);
}

void appendNumber(TextBuffer& buffer, double number) {
    buffer.commit(formatCoordinate(buffer.reserve(sMaxNumberLength), number));
}

void appendElement(TextBuffer& buffer, std::string_view name, std::string_view text) {
    if (text.empty()) {
        return;
    }
    for (const std::string_view piece : {std::string_view("<"), name, std::string_view(">")}) {
        buffer.append(piece);
    }
    appendXmlText(buffer, encoding::cutUtf8(text, SvgWriter::sMaxTitleSize), XmlContext::Content);
    for (const std::string_view piece : {std::string_view("</"), name, std::string_view(">\n")}) {
        buffer.append(piece);
    }
}

}  // namespace

void appendTitle(TextBuffer& buffer, std::string_view title) { appendElement(buffer, "title", title); }

FileHead::FileHead(const SvgWriter::Options& options, const BoundingBox& viewBox) : mOptions(options) {
    const BoundingBox box = hasFiniteCorners(viewBox) ? viewBox : BoundingBox({}, {});
    mX = makeRange(box.getMinPoint().x, box.getMaxPoint().x);
    mY = makeRange(box.getMinPoint().y, box.getMaxPoint().y);
}

FileHead::Range FileHead::makeRange(float minimum, float maximum) {
    const auto lower = static_cast<double>(minimum);
    const double extent = static_cast<double>(maximum) - lower;
    const double missing = std::max(0.0, sMinExtent - extent);
    return {lower - 0.5 * missing, extent + missing};
}

std::string FileHead::makeText(std::string_view title, std::string_view description) const {
    TextBuffer buffer;
    buffer.append("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    appendRoot(buffer);
    appendTitle(buffer, title);
    appendElement(buffer, "desc", description);
    appendScreenStyle(buffer);
    return buffer.makeText();
}

std::string FileHead::makeGround() const {
    TextBuffer buffer;
    if (SvgWriter::isColor(mOptions.mBackground)) {
        buffer.append("<rect x=\"");
        appendNumber(buffer, mX.mOrigin);
        buffer.append("\" y=\"");
        appendNumber(buffer, mY.mOrigin);
        buffer.append("\" width=\"");
        appendNumber(buffer, mX.mExtent);
        buffer.append("\" height=\"");
        appendNumber(buffer, mY.mExtent);
        buffer.append("\" fill=\"");
        buffer.append(mOptions.mBackground);
        buffer.append("\"/>\n");
    }
    return buffer.makeText();
}

void FileHead::appendRoot(TextBuffer& buffer) const {
    buffer.append(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\" role=\"img\" width=\"");
    appendNumber(buffer, mX.mExtent);
    buffer.append("mm\" height=\"");
    appendNumber(buffer, mY.mExtent);
    buffer.append("mm\" viewBox=\"");
    for (const double number : {mX.mOrigin, mY.mOrigin, mX.mExtent}) {
        appendNumber(buffer, number);
        buffer.append(" ");
    }
    appendNumber(buffer, mY.mExtent);
    buffer.append("\" stroke-width=\"");
    appendNumber(buffer, static_cast<double>(mOptions.mLineWidth));
    buffer.append("\">\n");
}

void FileHead::appendScreenStyle(TextBuffer& buffer) const {
    // On the screen a drawing fits the window, and its outlines are as wide as in the drawing at its natural size, 96
    // pixels to an inch, however it is scaled; in print it has its millimetres. Renderers that do not know such rules
    // scale the outlines, all alike.
    constexpr double pixelsPerMillimetre = 96.0 / 25.4;
    buffer.append(
        "<style>@media screen{svg:root{max-width:100%;max-height:100vh}@supports(vector-effect:non-scaling-stroke)"
        "{svg:root path:not(.s),svg:root rect:not(.s){vector-effect:non-scaling-stroke;stroke-width:");
    appendNumber(buffer, static_cast<double>(mOptions.mLineWidth) * pixelsPerMillimetre);
    buffer.append("px}}}</style>\n");
}

}  // namespace kt::svg
