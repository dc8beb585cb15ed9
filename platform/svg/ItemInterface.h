#pragma once

/// @file
/// Base of everything a drawing is made of.

#include "platform/svg/Transform.h"
#include "platform/svg/ktSvgExport.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace kt::svg {

/// One item of a drawing: a group (Node), rectangle, image, path or text. It carries the presentation attributes that
/// all items share; what is not set is inherited from the enclosing group, as SVG inherits it. Items are held by
/// std::shared_ptr and belong to one thread at a time.
class KT_SVG_API ItemInterface {
public:
    enum class Kind : std::uint8_t { Node, Rect, Image, Path, Text };

    /// Value of the style option that keeps an outline's width when the drawing is scaled
    /// (vector-effect="non-scaling-stroke").
    static constexpr int sStyleNonScalingStroke = 1;

    virtual ~ItemInterface();

    Kind getKind() const { return mKind; }

    /// Fill colour as SVG writes it: "#RRGGBB" or "none".
    const std::optional<std::string>& getColor() const { return getAttributes().mColor; }
    void setColor(std::string color) { editAttributes().mColor = std::move(color); }

    /// Outline (stroke) colour as SVG writes it: "#RRGGBB" or "none".
    const std::optional<std::string>& getOutlineColor() const { return getAttributes().mOutlineColor; }
    void setOutlineColor(std::string color) { editAttributes().mOutlineColor = std::move(color); }

    const std::optional<std::string>& getClass() const { return getAttributes().mClass; }
    void setClass(std::string text) { editAttributes().mClass = std::move(text); }

    const std::optional<std::string>& getId() const { return getAttributes().mId; }
    void setId(std::string text) { editAttributes().mId = std::move(text); }

    const std::optional<int>& getStyleOption() const { return getAttributes().mStyleOption; }
    void setStyleOption(int option) { editAttributes().mStyleOption = option; }

    /// Whether any of the attributes above is set.
    bool hasAttributes() const { return mAttributes != nullptr; }

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
    /// Most items of a drawing inherit everything, so that these stand apart: what is small stays in the cache.
    struct Attributes {
        std::optional<std::string> mColor;
        std::optional<std::string> mOutlineColor;
        std::optional<std::string> mClass;
        std::optional<std::string> mId;
        std::optional<int> mStyleOption;
    };
    static const Attributes sNoAttributes;

    const Attributes& getAttributes() const { return mAttributes ? *mAttributes : sNoAttributes; }
    Attributes& editAttributes();

    Kind mKind;
    std::optional<Transform> mTransform;
    std::unique_ptr<Attributes> mAttributes;
};

}  // namespace kt::svg
