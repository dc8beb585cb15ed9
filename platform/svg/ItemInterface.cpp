#include "platform/svg/ItemInterface.h"

#include <algorithm>
#include <cstring>

namespace kt::svg {

ItemInterface::ItemInterface(const ItemInterface& other)
    : mRareAttributes(other.mRareAttributes ? std::make_unique<RareAttributes>(*other.mRareAttributes) : nullptr),
      mColor(other.mColor),
      mOutlineColor(other.mOutlineColor),
      mName(other.mName),
      mTransform(other.mTransform),
      mStyleOption(other.mStyleOption),
      mKind(other.mKind),
      mNameKind(other.mNameKind) {}

ItemInterface& ItemInterface::operator=(const ItemInterface& other) {
    if (this != &other) {
        mRareAttributes = other.mRareAttributes ? std::make_unique<RareAttributes>(*other.mRareAttributes) : nullptr;
        mColor = other.mColor;
        mOutlineColor = other.mOutlineColor;
        mName = other.mName;
        mNameKind = other.mNameKind;
        mTransform = other.mTransform;
        mStyleOption = other.mStyleOption;
    }
    return *this;
}

ItemInterface::~ItemInterface() = default;

ItemInterface::RareAttributes& ItemInterface::editRareAttributes() {
    if (!mRareAttributes) {
        mRareAttributes = std::make_unique<RareAttributes>();
    }
    return *mRareAttributes;
}

template <std::uint8_t maxSize>
bool ItemInterface::ShortText<maxSize>::assign(std::string_view text) {
    if (text.size() > maxSize) {
        mSize = sNone;
        return false;
    }
    if (text.size() == ShortColor().mBytes.size()) {
        // "#RRGGBB": a copy without a call.
        std::memcpy(mBytes.data(), text.data(), ShortColor().mBytes.size());
    } else {
        std::copy(text.begin(), text.end(), mBytes.begin());
    }
    mSize = static_cast<std::uint8_t>(text.size());
    return true;
}

void ItemInterface::setText(ShortColor& color, RareText longColor, std::string_view value) {
    if (!color.assign(value)) {
        editRareAttributes().*longColor = value;
    }
}

void ItemInterface::setName(NameKind kind, RareText longName, std::string_view value) {
    if (mName.mSize == ShortName::sNone) {
        mNameKind = kind;
    }
    if (mNameKind != kind || !mName.assign(value)) {
        editRareAttributes().*longName = value;
    }
}

void ItemInterface::translate(const Wm4::Vector2<float>& offset) {
    if (mTransform) {
        mTransform->mTranslation += offset;
    } else {
        mTransform = Transform::makeTranslation(offset);
    }
}

}  // namespace kt::svg
