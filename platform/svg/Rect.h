#pragma once

/// @file
/// Axis-parallel rectangle.

#include "platform/svg/ItemInterface.h"

namespace kt::svg {

/// A rectangle from position to position + size, in the coordinates before its transform. Negative sizes are kept; they
/// mean the same area as the normalised rectangle.
class KT_SVG_API Rect final : public ItemInterface {
public:
    Rect() : ItemInterface(Kind::Rect) {}
    Rect(const Wm4::Vector2<float>& position, const Wm4::Vector2<float>& size)
        : ItemInterface(Kind::Rect), mPosition(position), mSize(size) {}
    ~Rect() override;

    const Wm4::Vector2<float>& getPosition() const { return mPosition; }
    void setPosition(const Wm4::Vector2<float>& position) { mPosition = position; }
    const Wm4::Vector2<float>& getSize() const { return mSize; }
    void setSize(const Wm4::Vector2<float>& size) { mSize = size; }

    /// An invisible rectangle takes part in bounding boxes but is not written to SVG files.
    bool isVisible() const { return mIsVisible; }
    void setVisible(bool visible) { mIsVisible = visible; }

private:
    Wm4::Vector2<float> mPosition{};
    Wm4::Vector2<float> mSize{};
    bool mIsVisible = true;
};

}  // namespace kt::svg
