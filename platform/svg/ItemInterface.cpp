#include "platform/svg/ItemInterface.h"

#include <algorithm>
#include <cstring>

namespace kt::svg {

ItemInterface::ItemInterface(const ItemInterface& other)
    : mRareAttributes(other.mRareAttributes ? std::make_unique<RareAttributes>(*other.mRareAttributes) : nullptr),
      mColor(other.mColor),
      mOutlineColor(other.mOutlineColor),
      mTransform(other.mTransform),
      mStyleOption(other.mStyleOption),
      mKind(other.mKind) {}

ItemInterface& ItemInterface::operator=(const ItemInterface& other) {
    if (this != &other) {
        mRareAttributes = other.mRareAttributes ? std::make_unique<RareAttributes>(*other.mRareAttributes) : nullptr;
        mColor = other.mColor;
        mOutlineColor = other.mOutlineColor;
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

void ItemInterface::setText(ShortText& text, RareText longText, std::string_view value) {
    if (value.size() > ShortText::sMaxSize) {
        editRareAttributes().*longText = value;
        text.mSize = ShortText::sNone;
        return;
    }
    if (value.size() == text.mBytes.size()) {
        // "#RRGGBB": a copy without a call.
        std::memcpy(text.mBytes.data(), value.data(), text.mBytes.size());
    } else {
        std::copy(value.begin(), value.end(), text.mBytes.begin());
    }
    text.mSize = static_cast<std::uint8_t>(value.size());
}

void ItemInterface::translate(const Wm4::Vector2<float>& offset) {
    if (mTransform) {
        mTransform->mTranslation += offset;
    } else {
        mTransform = Transform::makeTranslation(offset);
    }
}

}  // namespace kt::svg
