#pragma once

/// @file
/// Raster picture.

#include "platform/svg/ItemInterface.h"

namespace kt::svg {

/// A picture stretched over the rectangle from position to position + size. It stands upright in SVG's y-down frame.
class KT_SVG_API Image final : public ItemInterface {
public:
    Image() : ItemInterface(Kind::Image) {}
    ~Image() override;

    const Wm4::Vector2<float>& getPosition() const { return mPosition; }
    void setPosition(const Wm4::Vector2<float>& position) { mPosition = position; }
    const Wm4::Vector2<float>& getSize() const { return mSize; }
    void setSize(const Wm4::Vector2<float>& size) { mSize = size; }

    /// The picture: a data URI or the bytes of a picture file. Kept as given; what is neither is not drawn.
    const std::string& getSource() const { return mSource; }
    void setSource(std::string source) { mSource = std::move(source); }

private:
    Wm4::Vector2<float> mPosition{};
    Wm4::Vector2<float> mSize{};
    std::string mSource;
};

}  // namespace kt::svg
