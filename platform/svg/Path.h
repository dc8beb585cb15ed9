#pragma once

/// @file
/// Outline of lines, curves and elliptic arcs.

#include "platform/svg/ItemInterface.h"
#include "platform/svg/SmallVector.h"

namespace kt::svg {

/// A path: commands with their points in one contiguous array, in absolute coordinates.
class KT_SVG_API Path final : public ItemInterface {
public:
    /// What follows in the point array for each command.
    enum class Command : std::uint8_t {
        Move,   ///< 1 point
        Line,   ///< 1 point
        Cubic,  ///< 3 points: two controls, end
        Arc,    ///< 3 points: radii, (rotation of the x axis in degrees, flags: 1 large arc + 2 sweep), end
        Close,  ///< none
    };

    // Room for what most paths are: a few corners, or a circle.
    using Commands = SmallVector<Command, 8>;
    using Points = SmallVector<Wm4::Vector2<float>, 7>;

    Path() : ItemInterface(Kind::Path) {}
    ~Path() override;

    static constexpr int getPointCount(Command command) {
        return command == Command::Close ? 0 : (command == Command::Move || command == Command::Line ? 1 : 3);
    }

    const Commands& getCommands() const { return mCommands; }
    const Points& getPoints() const { return mPoints; }
    bool isEmpty() const { return mCommands.empty(); }

    void moveTo(const Wm4::Vector2<float>& point);
    void lineTo(const Wm4::Vector2<float>& point);
    void cubicTo(const Wm4::Vector2<float>& control1, const Wm4::Vector2<float>& control2,
                 const Wm4::Vector2<float>& end);
    /// An arc of the ellipse with these radii, as SVG's "A" command; rotation in degrees.
    void arcTo(const Wm4::Vector2<float>& radii, float rotation, bool isLarge, bool isSweep,
               const Wm4::Vector2<float>& end);
    void close();

private:
    Commands mCommands;
    Points mPoints;
};

}  // namespace kt::svg
