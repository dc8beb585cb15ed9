#include "platform/encoding/Hex.h"
#include "platform/svg/ComputeEstimatedBoundingBox.h"
#include "platform/svg/Readability_p.h"
#include "platform/svg/Text.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace kt::svg {

namespace {

/// Relative luminance, 0 to 1; nothing when the colour is not spelt #RRGGBB.
std::optional<double> getLuminance(std::string_view color) {
    constexpr std::size_t usualSize = 7;
    if (color.size() != usualSize) {
        return std::nullopt;
    }
    constexpr double shares[] = {0.2126, 0.7152, 0.0722};
    double luminance = 0.0;
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const int high = encoding::hexValue(color[1 + 2 * channel]);
        const int low = encoding::hexValue(color[2 + 2 * channel]);
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        const double value = (high * 16 + low) / 255.0;
        luminance += shares[channel] * (value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4));
    }
    return luminance;
}

bool contains(const BoundingBox& box, double x, double y) {
    return x >= static_cast<double>(box.getMinPoint().x) && x <= static_cast<double>(box.getMaxPoint().x) &&
           y >= static_cast<double>(box.getMinPoint().y) && y <= static_cast<double>(box.getMaxPoint().y);
}

Transform toTransform(const Affine& map) {
    const auto narrow = [](double value) { return static_cast<float>(value); };
    return {{narrow(map.mXx), narrow(map.mXy), narrow(map.mYx), narrow(map.mYy)}, {narrow(map.mX), narrow(map.mY)}};
}

}  // namespace

double Readability::getContrast(std::string_view a, std::string_view b) {
    constexpr double most = 21.0;
    constexpr double glare = 0.05;
    const std::optional<double> luminanceA = getLuminance(a);
    const std::optional<double> luminanceB = getLuminance(b);
    if (!luminanceA || !luminanceB) {
        return most;
    }
    return (std::max(*luminanceA, *luminanceB) + glare) / (std::min(*luminanceA, *luminanceB) + glare);
}

void Readability::clear() {
    mFills.clear();
    mIsTold = false;
}

void Readability::addFill(std::string_view color, const ItemInterface& item, const Affine& surroundings) {
    if (color == "none") {
        return;
    }
    mFills.push_back({color, &item, surroundings});
}

void Readability::addUnknown() { mFills.clear(); }

bool Readability::isReadable(std::string_view color, std::string_view fill) {
    if (color == mReadableColor && fill == mReadableFill) {
        return true;
    }
    if (getContrast(color, fill) < sMinContrast) {
        return false;
    }
    mReadableColor = color;
    mReadableFill = fill;
    return true;
}

std::string_view Readability::findUnreadable(std::string_view color, const Text& text, const Affine& map) {
    const auto isUnreadable = [&](const Fill& fill) { return !isReadable(color, fill.mColor); };
    if (mIsTold || std::none_of(mFills.begin(), mFills.end(), isUnreadable)) {
        return {};
    }
    const double x = static_cast<double>(text.getPosition().x) + 0.5 * static_cast<double>(text.getLength());
    const double y = static_cast<double>(text.getPosition().y) - 0.3 * static_cast<double>(text.getSize());
    const auto beneath = std::find_if(mFills.rbegin(), mFills.rend(), [&](const Fill& fill) {
        const Transform surroundings = toTransform(fill.mSurroundings);
        const BoundingBox box = ComputeEstimatedBoundingBox(*fill.mItem, nullptr, &surroundings);
        return contains(box, map.mapX(x, y), map.mapY(x, y));
    });
    if (beneath == mFills.rend() || !isUnreadable(*beneath)) {
        return {};
    }
    mIsTold = true;
    return beneath->mColor;
}

}  // namespace kt::svg
