#pragma once

/// @file
/// Puts drawings together for tests.

#include "platform/svg/Image.h"
#include "platform/svg/Node.h"
#include "platform/svg/Path.h"
#include "platform/svg/Rect.h"

#include <memory>
#include <string>
#include <vector>

namespace kt::test {

using Items = std::vector<std::shared_ptr<svg::ItemInterface>>;
using Point2 = Wm4::Vector2<float>;

inline std::shared_ptr<svg::Node> makeGroup(const svg::Transform& transform, const Items& items) {
    auto group = std::make_shared<svg::Node>();
    group->setTransform(transform);
    for (const auto& item : items) {
        group->appendChild(item);
    }
    return group;
}

inline std::shared_ptr<svg::Rect> makeRect(const Point2& position, const Point2& size, const std::string& color = "",
                                           const std::string& outlineColor = "") {
    auto rect = std::make_shared<svg::Rect>(position, size);
    if (!color.empty()) {
        rect->setColor(color);
        rect->setOutlineColor(outlineColor);
    }
    return rect;
}

inline std::shared_ptr<svg::Image> makeImage(const std::string& source, const Point2& position, const Point2& size) {
    auto image = std::make_shared<svg::Image>();
    image->setSource(source);
    image->setPosition(position);
    image->setSize(size);
    return image;
}

/// The letters of a path's commands.
inline std::string lettersOf(const svg::Path& path) {
    std::string letters;
    for (const svg::Path::Command command : path.getCommands()) {
        letters += "MLCAZ"[static_cast<int>(command)];
    }
    return letters;
}

}  // namespace kt::test
