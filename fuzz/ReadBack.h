#pragma once

/// @file
/// Drawings, read back by another program's parser.

#include <expat.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ktFuzz {

/// What a strict parser finds in a drawing.
struct DrawingFacts {
    bool mIsWellFormed = false;
    int mDepth = 0;                ///< of the deepest element
    std::string mText;             ///< all character data of text elements
    std::size_t mPictures = 0;     ///< data URIs
    bool mIsSelfContained = true;  ///< no script, and no reference but to itself and to data URIs
};

namespace detail {

struct Reader {
    DrawingFacts mFacts;
    std::vector<std::string> mOpen;

    static void startElement(void* data, const XML_Char* name, const XML_Char** attributes) {
        auto& reader = *static_cast<Reader*>(data);
        const std::string_view element = name;
        reader.mOpen.emplace_back(element);
        DrawingFacts& facts = reader.mFacts;
        facts.mDepth = std::max(facts.mDepth, static_cast<int>(reader.mOpen.size()));
        facts.mIsSelfContained &= element != "script" && element != "foreignObject";
        for (; *attributes != nullptr; attributes += 2) {
            const std::string_view attribute = attributes[0];
            const std::string_view value = attributes[1];
            facts.mIsSelfContained &= !attribute.starts_with("on");
            if (attribute == "href" || attribute == "xlink:href") {
                facts.mPictures += value.starts_with("data:image/") ? 1U : 0U;
                facts.mIsSelfContained &= value.starts_with("data:image/") || value.starts_with("#");
            }
        }
    }
    static void endElement(void* data, const XML_Char* /*name*/) { static_cast<Reader*>(data)->mOpen.pop_back(); }
    static void addText(void* data, const XML_Char* text, int length) {
        auto& reader = *static_cast<Reader*>(data);
        if (reader.mOpen.back() == "text" || reader.mOpen.back() == "tspan") {
            reader.mFacts.mText.append(text, static_cast<std::size_t>(length));
        }
    }
};

}  // namespace detail

inline DrawingFacts readBack(std::string_view drawing) {
    detail::Reader reader;
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate("UTF-8"),
                                                                              &XML_ParserFree);
    XML_SetUserData(parser.get(), &reader);
    XML_SetElementHandler(parser.get(), &detail::Reader::startElement, &detail::Reader::endElement);
    XML_SetCharacterDataHandler(parser.get(), &detail::Reader::addText);
    reader.mFacts.mIsWellFormed =
        XML_Parse(parser.get(), drawing.data(), static_cast<int>(drawing.size()), XML_TRUE) == XML_STATUS_OK;
    return reader.mFacts;
}

}  // namespace ktFuzz
