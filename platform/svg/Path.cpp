#include "platform/svg/Path.h"

#include <array>

namespace kt::svg {

Path::~Path() = default;

void Path::moveTo(const Wm4::Vector2<float>& point) {
    mCommands.push_back(Command::Move);
    mPoints.push_back(point);
}

void Path::lineTo(const Wm4::Vector2<float>& point) {
    mCommands.push_back(Command::Line);
    mPoints.push_back(point);
}

void Path::cubicTo(const Wm4::Vector2<float>& control1, const Wm4::Vector2<float>& control2,
                   const Wm4::Vector2<float>& end) {
    mCommands.push_back(Command::Cubic);
    mPoints.append(std::array{control1, control2, end});
}

void Path::arcTo(const Wm4::Vector2<float>& radii, float rotation, bool isLarge, bool isSweep,
                 const Wm4::Vector2<float>& end) {
    const float flags = (isLarge ? 1.0F : 0.0F) + (isSweep ? 2.0F : 0.0F);
    mCommands.push_back(Command::Arc);
    mPoints.append(std::array{radii, Wm4::Vector2<float>(rotation, flags), end});
}

void Path::close() { mCommands.push_back(Command::Close); }

}  // namespace kt::svg
