#include "platform/svg/ItemInterface.h"

namespace kt::svg {

constinit const ItemInterface::Attributes ItemInterface::sNoAttributes{};

ItemInterface::ItemInterface(const ItemInterface& other)
    : mKind(other.mKind),
      mTransform(other.mTransform),
      mAttributes(other.mAttributes ? std::make_unique<Attributes>(*other.mAttributes) : nullptr) {}

ItemInterface& ItemInterface::operator=(const ItemInterface& other) {
    if (this != &other) {
        mAttributes = other.mAttributes ? std::make_unique<Attributes>(*other.mAttributes) : nullptr;
        mTransform = other.mTransform;
    }
    return *this;
}

ItemInterface::~ItemInterface() = default;

ItemInterface::Attributes& ItemInterface::editAttributes() {
    if (!mAttributes) {
        mAttributes = std::make_unique<Attributes>();
    }
    return *mAttributes;
}

void ItemInterface::translate(const Wm4::Vector2<float>& offset) {
    if (mTransform) {
        mTransform->mTranslation += offset;
    } else {
        mTransform = Transform::makeTranslation(offset);
    }
}

}  // namespace kt::svg
