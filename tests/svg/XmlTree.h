#pragma once

/// @file
/// XML text as a strict parser reads it.

#include <expat.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kt::test {

struct XmlElement {
    std::string mName;
    std::map<std::string, std::string> mAttributes;
    std::string mText;  ///< its own character data
    int mDepth = 0;     ///< 1 for the root
    std::size_t mParent = 0;

    std::string getAttribute(const std::string& name) const {
        const auto entry = mAttributes.find(name);
        return entry == mAttributes.end() ? std::string() : entry->second;
    }
};

/// Takes down what the parser tells.
struct XmlReader {
    std::vector<XmlElement> mElements;
    std::vector<std::size_t> mOpen;

    static void startElement(void* data, const XML_Char* name, const XML_Char** attributes) {
        auto& reader = *static_cast<XmlReader*>(data);
        const std::size_t parent = reader.mOpen.empty() ? 0 : reader.mOpen.back();
        XmlElement element{name, {}, {}, static_cast<int>(reader.mOpen.size()) + 1, parent};
        for (; *attributes != nullptr; attributes += 2) {
            element.mAttributes[attributes[0]] = attributes[1];
        }
        reader.mOpen.push_back(reader.mElements.size());
        reader.mElements.push_back(std::move(element));
    }
    static void endElement(void* data, const XML_Char* /*name*/) { static_cast<XmlReader*>(data)->mOpen.pop_back(); }
    static void addText(void* data, const XML_Char* text, int length) {
        auto& reader = *static_cast<XmlReader*>(data);
        reader.mElements[reader.mOpen.back()].mText.append(text, static_cast<std::size_t>(length));
    }
};

/// The elements in document order; nothing when the text is not well-formed.
inline std::optional<std::vector<XmlElement>> parseXml(std::string_view text) {
    XmlReader reader;
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate(nullptr),
                                                                              &XML_ParserFree);
    XML_SetUserData(parser.get(), &reader);
    XML_SetElementHandler(parser.get(), &XmlReader::startElement, &XmlReader::endElement);
    XML_SetCharacterDataHandler(parser.get(), &XmlReader::addText);
    if (XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE) != XML_STATUS_OK) {
        return std::nullopt;
    }
    return std::move(reader.mElements);
}

/// The elements of this name.
inline std::vector<XmlElement> findElements(const std::vector<XmlElement>& elements, std::string_view name) {
    std::vector<XmlElement> found;
    for (const XmlElement& element : elements) {
        if (element.mName == name) {
            found.push_back(element);
        }
    }
    return found;
}

/// The elements below the root, but for styles, a line each: as many dots as elements around it, name, attributes in
/// the order of their names, text (but for the line breaks between elements).
inline std::string describeElements(const std::vector<XmlElement>& elements) {
    std::string description;
    for (const XmlElement& element : elements) {
        if (element.mDepth > 1 && element.mName != "style") {
            description.append(static_cast<std::size_t>(element.mDepth - 2), '.').append(element.mName);
            for (const auto& [name, value] : element.mAttributes) {
                description.append(" ").append(name).append("=").append(value);
            }
            const bool hasText = !element.mText.empty() && element.mText.front() != '\n';
            description.append(hasText ? " | " + element.mText : "").append("\n");
        }
    }
    return description;
}

}  // namespace kt::test
