#include "tools/ktannot/report/CadJson.h"

#include "platform/svg/Image.h"
#include "platform/svg/Node.h"
#include "platform/svg/Path.h"
#include "platform/svg/Rect.h"
#include "platform/svg/Text.h"
#include "tools/ktannot/report/JsonWriter.h"

#include <array>
#include <charconv>
#include <string>
#include <vector>

namespace ktannot {

namespace {

using kt::svg::ItemInterface;
using kt::svg::Node;
using kt::svg::Path;

/// The shortest decimal that reads back as the same number, after a blank.
void appendNumber(std::string& text, float number) {
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    text += ' ';
    text.append(digits.data(), end.ptr);
}

void appendPoint(std::string& text, const Wm4::Vector2<float>& point) {
    appendNumber(text, point.x);
    appendNumber(text, point.y);
}

/// The path's commands as SVG writes them, in absolute coordinates.
std::string formatPath(const Path& path) {
    std::string text;
    const Wm4::Vector2<float>* point = path.getPoints().data();
    for (const Path::Command command : path.getCommands()) {
        if (!text.empty()) {
            text += ' ';
        }
        switch (command) {
            case Path::Command::Move:
                text += 'M';
                appendPoint(text, point[0]);
                break;
            case Path::Command::Line:
                text += 'L';
                appendPoint(text, point[0]);
                break;
            case Path::Command::Cubic:
                text += 'C';
                appendPoint(text, point[0]);
                appendPoint(text, point[1]);
                appendPoint(text, point[2]);
                break;
            case Path::Command::Arc: {
                const int flags = static_cast<int>(point[1].y);
                text += 'A';
                appendPoint(text, point[0]);
                appendNumber(text, point[1].x);
                text += (flags & 1) != 0 ? " 1" : " 0";
                text += (flags & 2) != 0 ? " 1" : " 0";
                appendPoint(text, point[2]);
                break;
            }
            case Path::Command::Close:
                text += 'Z';
                break;
        }
        point += Path::getPointCount(command);
    }
    return text;
}

void writeAttributes(JsonWriter& json, const ItemInterface& item) {
    if (item.getId()) {
        json.key("id").text(*item.getId());
    }
    if (item.getColor()) {
        json.key("fill").text(*item.getColor());
    }
    if (item.getOutlineColor()) {
        json.key("outline").text(*item.getOutlineColor());
    }
    if (item.getClass()) {
        json.key("class").text(*item.getClass());
    }
    if (item.getStyleOption()) {
        json.key("style").number(*item.getStyleOption());
    }
    if (const auto& transform = item.getTransform()) {
        const auto& matrix = transform->mMatrix;
        const auto& translation = transform->mTranslation;
        json.key("transform").beginArray();
        for (const float entry :
             {matrix(0, 0), matrix(0, 1), matrix(1, 0), matrix(1, 1), translation.x, translation.y}) {
            json.number(entry);
        }
        json.endArray();
    }
}

void writeText(JsonWriter& json, const kt::svg::Text& text) {
    json.key("position").vector(text.getPosition());
    json.key("text").text(text.getText());
    json.key("font").text(text.getFont());
    json.key("size").number(text.getSize());
    json.key("bold").boolean(text.isBold());
    json.key("italic").boolean(text.isItalic());
}

/// Writes everything of an item but a group's children, which stay open to be written.
void beginItem(JsonWriter& json, const ItemInterface& item) {
    static constexpr const char* sNames[] = {"node", "rect", "image", "path", "text"};
    json.beginObject();
    json.key("item").text(sNames[static_cast<std::size_t>(item.getKind())]);
    writeAttributes(json, item);
    switch (item.getKind()) {
        case ItemInterface::Kind::Node:
            json.key("children").beginArray();
            break;
        case ItemInterface::Kind::Rect: {
            const auto& rect = static_cast<const kt::svg::Rect&>(item);
            json.key("position").vector(rect.getPosition());
            json.key("size").vector(rect.getSize());
            break;
        }
        case ItemInterface::Kind::Image: {
            const auto& image = static_cast<const kt::svg::Image&>(item);
            json.key("position").vector(image.getPosition());
            json.key("size").vector(image.getSize());
            json.key("source").text(image.getSource());
            break;
        }
        case ItemInterface::Kind::Path:
            json.key("d").text(formatPath(static_cast<const Path&>(item)));
            break;
        case ItemInterface::Kind::Text:
            writeText(json, static_cast<const kt::svg::Text&>(item));
            break;
    }
}

void writeItem(JsonWriter& json, const ItemInterface& root) {
    struct OpenGroup {
        const Node* mNode;
        std::size_t mNext = 0;
    };
    std::vector<OpenGroup> open;
    const auto begin = [&](const ItemInterface& item) {
        beginItem(json, item);
        if (item.getKind() == ItemInterface::Kind::Node) {
            open.push_back({&static_cast<const Node&>(item)});
        } else {
            json.endObject();
        }
    };
    begin(root);
    while (!open.empty()) {
        OpenGroup& group = open.back();
        if (group.mNext < group.mNode->getChildren().size()) {
            begin(*group.mNode->getChildren()[group.mNext++]);
        } else {
            open.pop_back();
            json.endArray();
            json.endObject();
        }
    }
}

void writeRoot(JsonWriter& json, const std::shared_ptr<Node>& root) {
    if (root != nullptr) {
        writeItem(json, *root);
    } else {
        json.null();
    }
}

void writeAnnotation(JsonWriter& json, const kt::ktCadAnnotation& annotation) {
    json.beginObject();
    json.key("name").text(annotation.GetName());
    json.key("color").color(annotation.mColor);
    json.key("position").vector(annotation.mPosition);
    json.key("flags").number(annotation.mFlags);
    json.key("rotation").number(annotation.mRotation);
    json.key("scale").number(annotation.mScale);

    json.key("segments").beginArray();
    for (const auto& segment : annotation.mSegments) {
        json.beginArray();
        json.vector(segment.mStart);
        json.vector(segment.mEnd);
        json.endArray();
    }
    json.endArray();

    json.key("anchors").beginArray();
    for (const auto& anchor : annotation.mLeaderAnchors) {
        json.beginObject();
        json.key("anchor").vector(anchor.mAnchor);
        json.key("offset").vector(anchor.mOffset);
        json.endObject();
    }
    json.endArray();

    json.key("shapes").beginArray();
    for (const auto& shape : annotation.mShapes) {
        json.beginObject();
        json.key("position").vector(shape.mPosition);
        json.key("node");
        writeRoot(json, shape.mNode);
        json.endObject();
    }
    json.endArray();

    json.key("root");
    writeRoot(json, annotation.mRoot);
    json.endObject();
}

}  // namespace

void writeCadViewJson(JsonWriter& json, const kt::ktCadAnnotationView* view) {
    if (view == nullptr) {
        json.null();
        return;
    }
    json.beginObject();
    json.key("name").text(view->GetName());
    json.key("origin").vector(view->mOrigin);
    json.key("normal").vector(view->mNormal);
    json.key("axis").vector(view->mAxis);
    json.key("annotations").beginArray();
    for (const auto& annotation : view->mAnnotations) {
        writeAnnotation(json, *annotation);
    }
    json.endArray();
    json.endObject();
}

}  // namespace ktannot
