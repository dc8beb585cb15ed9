#include "platform/svg/ComputeEstimatedBoundingBox.h"
#include "platform/svg/GlyphDefinitions_p.h"
#include "platform/svg/NumberFormat_p.h"
#include "platform/svg/PathData_p.h"
#include "platform/svg/ReservedId_p.h"

#include <algorithm>
#include <cmath>

namespace kt::svg {

namespace {

/// Outlines are written to this part of their size, so that even large letters keep their shape.
constexpr int sSignificantDecimals = 5;

int getOutlineDecimals(const Path& outline) {
    const BoundingBox box = ComputeEstimatedBoundingBox(outline);
    const double size = static_cast<double>(std::max(box.getWidth(), box.getHeight()));
    if (!(size > 0.0)) {
        return sMaxDecimals;
    }
    return std::clamp(sSignificantDecimals - static_cast<int>(std::floor(std::log10(size))), 0, sMaxDecimals);
}

}  // namespace

bool GlyphDefinitions::isReserved(std::string_view id) { return isNumberedId(id, 'g'); }

void GlyphDefinitions::keepOwner(std::shared_ptr<const void> owner) { mOwners.insert(std::move(owner)); }

unsigned GlyphDefinitions::define(const Path& outline) {
    if (outline.isEmpty() || !isFinite(outline)) {
        return 0;
    }
    const auto [entry, isNew] = mNumbers.try_emplace(&outline, static_cast<unsigned>(mNumbers.size()) + 1);
    if (isNew) {
        mBuffer.append("<path id=\"g");
        mBuffer.append(std::to_string(entry->second));
        mBuffer.append("\" d=\"");
        appendPathData(mBuffer, outline, 0.0, 0.0, getOutlineDecimals(outline));
        mBuffer.append("\"/>\n");
    }
    return entry->second;
}

std::string_view GlyphDefinitions::getElements() {
    mBuffer.flush();
    return mText;
}

}  // namespace kt::svg
