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
    const auto [entry, isNew] = mNumbers.try_emplace(&outline, 0);
    if (isNew && !outline.isEmpty() && isFinite(outline)) {
        entry->second = ++mLastNumber;
        mElements.append("<path id=\"g");
        mElements.append(std::to_string(entry->second));
        mElements.append("\" d=\"");
        appendPathData(mElements, outline, 0.0, 0.0, getOutlineDecimals(outline));
        mElements.append("\"/>\n");
    }
    return entry->second;
}

void GlyphDefinitions::appendElements(std::vector<std::string_view>& pieces) const { mElements.appendPieces(pieces); }

}  // namespace kt::svg
