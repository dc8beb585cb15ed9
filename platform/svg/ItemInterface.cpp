#include "platform/svg/ItemInterface.h"

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
