#include "platform/svg/ItemInterface.h"

namespace kt::svg {

ItemInterface::~ItemInterface() = default;

void ItemInterface::translate(const Wm4::Vector2<float>& offset) {
    if (mTransform) {
        mTransform->mTranslation += offset;
    } else {
        mTransform = Transform::makeTranslation(offset);
    }
}

}  // namespace kt::svg
