/// @file
/// Items of any numbers, names, colours and texts, written as a drawing. Contract: well-formed, not deeper than
/// promised, without references to elsewhere; texts come back as they were, what XML cannot hold replaced.

#include "fuzz/Bytes.h"
#include "fuzz/ReadBack.h"
#include "platform/svg/Node.h"
#include "platform/svg/Path.h"
#include "platform/svg/Rect.h"
#include "platform/svg/SvgWriter.h"
#include "platform/svg/Text.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace {

using namespace kt::svg;

Wm4::Vector2<float> takePoint(ktFuzz::Bytes& bytes) {
    const float x = bytes.take<float>();
    return {x, bytes.take<float>()};
}

std::shared_ptr<Path> takePath(ktFuzz::Bytes& bytes) {
    auto path = std::make_shared<Path>();
    path->moveTo(takePoint(bytes));
    for (int count = bytes.take<std::uint8_t>() % 16; count > 0; --count) {
        switch (bytes.take<std::uint8_t>() % 4U) {
            case 0:
                path->lineTo(takePoint(bytes));
                break;
            case 1: {
                const auto first = takePoint(bytes);
                const auto second = takePoint(bytes);
                path->cubicTo(first, second, takePoint(bytes));
                break;
            }
            case 2: {
                const auto radii = takePoint(bytes);
                path->arcTo(radii, bytes.take<float>(), true, false, takePoint(bytes));
                break;
            }
            default:
                path->close();
                break;
        }
    }
    return path;
}

std::shared_ptr<ItemInterface> takeItem(ktFuzz::Bytes& bytes, std::string& ascii) {
    switch (bytes.take<std::uint8_t>() % 3U) {
        case 0:
            return takePath(bytes);
        case 1: {
            const auto position = takePoint(bytes);
            return std::make_shared<Rect>(position, takePoint(bytes));
        }
        default: {
            auto text = std::make_shared<Text>();
            // Printable ASCII: what comes back can be told without knowing the writer's rules.
            std::string content = bytes.takeText();
            std::ranges::replace_if(
                content, [](char c) { return c < ' ' || c > '~'; }, '&');
            text->setText(content);
            text->setFont(bytes.takeText());
            text->setSize(3.0F);
            text->setLength(10.0F);
            ascii += content;
            return text;
        }
    }
}

/// Adds items to the group, and groups in groups.
void fill(Node& root, ktFuzz::Bytes& bytes, std::string& ascii) {
    Node* group = &root;
    while (!bytes.isEmpty()) {
        const auto flags = bytes.take<std::uint8_t>();
        std::shared_ptr<ItemInterface> item;
        if ((flags & 1U) != 0) {
            item = std::make_shared<Node>();
        } else {
            item = takeItem(bytes, ascii);
        }
        if ((flags & 2U) != 0) {
            item->setColor(bytes.takeText());
            item->setOutlineColor(bytes.takeText());
        }
        if ((flags & 4U) != 0) {
            item->setId(bytes.takeText());
            item->setClass(bytes.takeText());
        }
        // Texts stand where they are drawn for sure, so that each must come back.
        if ((flags & 8U) != 0 && item->getKind() != ItemInterface::Kind::Text && (flags & 1U) == 0) {
            Transform transform;
            transform.mTranslation = takePoint(bytes);
            transform.mMatrix = Wm4::Matrix2<float>(bytes.take<float>(), 0.0F, bytes.take<float>(), 1.0F);
            item->setTransform(transform);
        }
        group->appendChild(item);
        if ((flags & 1U) != 0) {
            group = (flags & 16U) != 0 ? &root : static_cast<Node*>(item.get());
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ktFuzz::Bytes bytes(data, size);
    const std::string title = bytes.takeText();
    Node root;
    std::string ascii;
    fill(root, bytes, ascii);
    SvgWriter writer{{}};
    writer.startDocument(title);
    writer.writeItem(root);
    std::string drawing;
    for (const std::string_view piece : writer.endDocument(BoundingBox{}, title)) {
        drawing += piece;
    }
    const ktFuzz::DrawingFacts facts = ktFuzz::readBack(drawing);
    if (!facts.mIsWellFormed || !facts.mIsSelfContained || facts.mDepth > SvgWriter::sMaxDepth) {
        std::abort();
    }
    // Groups share what follows them among the siblings: the order of texts is the order of the document.
    std::string letters = facts.mText;
    std::ranges::sort(letters);
    std::ranges::sort(ascii);
    if (letters != ascii) {
        std::abort();
    }
    return 0;
}
