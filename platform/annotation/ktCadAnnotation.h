#pragma once

/// @file
/// Annotation of the current model.

#include "platform/annotation/ktAnnotationExport.h"
#include "platform/svg/Node.h"
#include "platform/system/object/ktObject.h"
#include "platform/wm4/Wm4Vector2.h"
#include "platform/wm4/Wm4Vector3.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace kt {

/// An annotation whose content is a tree of SVG items, placed at a point of its view's plane, with leaders that lie in
/// the view's frame. Lengths are millimetres; the view's frame has y pointing up, the content's frame y pointing down.
class KT_ANNOTATION_API ktCadAnnotation : public ktObject {
public:
    /// A piece of a leader or dimension line, from one point of the view's frame to another.
    struct LineSegment {
        LineSegment() = default;
        LineSegment(const Wm4::Vector3<float>& start, const Wm4::Vector3<float>& end) : mStart(start), mEnd(end) {}

        Wm4::Vector3<float> mStart{};
        Wm4::Vector3<float> mEnd{};
    };

    /// Ties a leader to the content: the leader's end in the view's frame and the matching offset in the content's
    /// frame.
    struct SvgLeaderAnchors {
        SvgLeaderAnchors() = default;
        SvgLeaderAnchors(const Wm4::Vector3<float>& anchor, const Wm4::Vector2<float>& offset)
            : mAnchor(anchor), mOffset(offset) {}

        Wm4::Vector3<float> mAnchor{};
        Wm4::Vector2<float> mOffset{};
    };

    /// A small drawing, such as a leader's head, at a point of the view's frame.
    struct Shape {
        Shape() = default;
        Shape(std::shared_ptr<svg::Node> node, const Wm4::Vector3<float>& position)
            : mNode(std::move(node)), mPosition(position) {}

        std::shared_ptr<svg::Node> mNode;
        Wm4::Vector3<float> mPosition{};
    };

    /// Bits of the display-flag byte.
    enum DisplayFlag : std::uint8_t {
        FlagScalesWithView = 0x10,
        FlagIgnoreZTest = 0x20,
        FlagScaleLocked = 0x40,
        FlagFacesViewer = 0x80,
    };

    ktCadAnnotation() = default;
    ~ktCadAnnotation() override;

    void SetName(const std::string& name) override { mName = name; }
    const std::string& GetName() const override { return mName; }

    std::string mName;
    std::shared_ptr<svg::Node> mRoot;              ///< the content; null until one is set
    std::vector<LineSegment> mSegments;            ///< leaders and dimension lines
    std::vector<Shape> mShapes;                    ///< leader heads
    std::vector<SvgLeaderAnchors> mLeaderAnchors;  ///< one per leader and per measure leader
    Wm4::Vector3<float> mPosition{};               ///< where the content's origin stands
    float mRotation = 0.0F;                        ///< radians
    float mScale = 1.0F;
    Wm4::Vector3<unsigned char> mColor{};  ///< red, green, blue of the leaders; black by default
    std::uint8_t mFlags = 0;               ///< DisplayFlag bits
};

}  // namespace kt
