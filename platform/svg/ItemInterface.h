#pragma once

/// @file
/// Base of everything a drawing is made of.

#include "platform/svg/Transform.h"
#include "platform/svg/ktSvgExport.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace kt::svg {

/// One item of a drawing: a group (Node), rectangle, image, path or text. It carries the presentation attributes that
/// all items share; what is not set is inherited from the enclosing group, as SVG inherits it. Texts that it gives are
/// valid until they are set again. Items are held by std::shared_ptr and belong to one thread at a time.
class KT_SVG_API ItemInterface {
public:
    enum class Kind : std::uint8_t { Node, Rect, Image, Path, Text };

    /// Value of the style option that keeps an outline's width when the drawing is scaled
    /// (vector-effect="non-scaling-stroke").
    static constexpr int sStyleNonScalingStroke = 1;

    virtual ~ItemInterface();

    Kind getKind() const { return mKind; }

    /// Fill colour as SVG writes it: "#RRGGBB" or "none".
    std::optional<std::string_view> getColor() const { return getText(mColor, &RareAttributes::mColor); }
    void setColor(std::string_view color) { setText(mColor, &RareAttributes::mColor, color); }

    /// Outline (stroke) colour as SVG writes it: "#RRGGBB" or "none".
    std::optional<std::string_view> getOutlineColor() const {
        return getText(mOutlineColor, &RareAttributes::mOutlineColor);
    }
    void setOutlineColor(std::string_view color) { setText(mOutlineColor, &RareAttributes::mOutlineColor, color); }

    std::optional<std::string_view> getClass() const { return getName(NameKind::Class, &RareAttributes::mClass); }
    void setClass(std::string_view text) { setName(NameKind::Class, &RareAttributes::mClass, text); }

    std::optional<std::string_view> getId() const { return getName(NameKind::Id, &RareAttributes::mId); }
    void setId(std::string_view text) { setName(NameKind::Id, &RareAttributes::mId, text); }

    const std::optional<int>& getStyleOption() const { return mStyleOption; }
    void setStyleOption(int option) { mStyleOption = option; }

    /// Maps the item's own coordinates to those of the enclosing group.
    const std::optional<Transform>& getTransform() const { return mTransform; }
    void setTransform(const Transform& transform) { mTransform = transform; }

    /// Puts a translation in front of the item's transform, so that it is applied last.
    void translate(const Wm4::Vector2<float>& offset);

protected:
    explicit ItemInterface(Kind kind) : mKind(kind) {}
    ItemInterface(const ItemInterface& other);
    ItemInterface& operator=(const ItemInterface& other);

private:
    /// What few items have stands apart, so that the many stay small.
    struct RareAttributes {
        std::optional<std::string> mColor;  ///< texts that find no room in a ShortText
        std::optional<std::string> mOutlineColor;
        std::optional<std::string> mClass;
        std::optional<std::string> mId;
    };
    using RareText = std::optional<std::string> RareAttributes::*;

    static constexpr std::size_t sColorSize = 7;  ///< "#RRGGBB"

    /// A text of a few bytes, or none.
    template <std::size_t maxSize>
    struct ShortText {
        static constexpr std::uint8_t sNone = 0xFF;

        /// False, and there is none then, when the text is too long.
        bool assign(std::string_view text) {
            if (text.size() > maxSize) {
                mSize = sNone;
                return false;
            }
            if (text.size() == sColorSize) {
                std::memcpy(mBytes.data(), text.data(), sColorSize);  // of a known size: without a call
            } else {
                std::copy(text.begin(), text.end(), mBytes.begin());
            }
            mSize = static_cast<std::uint8_t>(text.size());
            return true;
        }
        std::string_view get() const { return {mBytes.data(), mSize}; }

        std::array<char, maxSize> mBytes{};
        std::uint8_t mSize = sNone;
    };
    using ShortColor = ShortText<sColorSize>;
    using ShortName = ShortText<15>;

    /// What an item's short name is: hardly any item has both an id and a class.
    enum class NameKind : std::uint8_t { Id, Class };

    std::optional<std::string_view> getRareText(RareText member) const {
        return mRareAttributes && (*mRareAttributes).*member
                   ? std::optional<std::string_view>(*((*mRareAttributes).*member))
                   : std::nullopt;
    }
    std::optional<std::string_view> getText(const ShortColor& color, RareText longColor) const {
        return color.mSize != ShortColor::sNone ? color.get() : getRareText(longColor);
    }
    std::optional<std::string_view> getName(NameKind kind, RareText longName) const {
        return mNameKind == kind && mName.mSize != ShortName::sNone ? mName.get() : getRareText(longName);
    }
    void setText(ShortColor& color, RareText longColor, std::string_view value) {
        if (!color.assign(value)) {
            editRareAttributes().*longColor = value;
        }
    }
    void setName(NameKind kind, RareText longName, std::string_view value);
    RareAttributes& editRareAttributes();

    std::unique_ptr<RareAttributes> mRareAttributes;
    ShortColor mColor;
    ShortColor mOutlineColor;
    ShortName mName;
    std::optional<Transform> mTransform;
    std::optional<int> mStyleOption;
    Kind mKind;
    NameKind mNameKind = NameKind::Id;
};

}  // namespace kt::svg
