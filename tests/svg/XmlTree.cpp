#include "tests/svg/XmlTree.h"

#include <expat.h>

#include <memory>

namespace kt::test {

namespace {

struct Reader {
    std::vector<XmlElement> mElements;
    std::vector<std::size_t> mOpen;
};

void startElement(void* data, const XML_Char* name, const XML_Char** attributes) {
    auto& reader = *static_cast<Reader*>(data);
    XmlElement element;
    element.mName = name;
    element.mDepth = static_cast<int>(reader.mOpen.size()) + 1;
    element.mParent = reader.mOpen.empty() ? 0 : reader.mOpen.back();
    for (; *attributes != nullptr; attributes += 2) {
        element.mAttributes[attributes[0]] = attributes[1];
    }
    reader.mOpen.push_back(reader.mElements.size());
    reader.mElements.push_back(std::move(element));
}

void endElement(void* data, const XML_Char* /*name*/) { static_cast<Reader*>(data)->mOpen.pop_back(); }

void addText(void* data, const XML_Char* text, int length) {
    auto& reader = *static_cast<Reader*>(data);
    reader.mElements[reader.mOpen.back()].mText.append(text, static_cast<std::size_t>(length));
}

}  // namespace

std::optional<std::vector<XmlElement>> parseXml(std::string_view text) {
    Reader reader;
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate(nullptr),
                                                                              &XML_ParserFree);
    XML_SetUserData(parser.get(), &reader);
    XML_SetElementHandler(parser.get(), &startElement, &endElement);
    XML_SetCharacterDataHandler(parser.get(), &addText);
    if (XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE) != XML_STATUS_OK) {
        return std::nullopt;
    }
    return std::move(reader.mElements);
}

std::vector<XmlElement> findElements(const std::vector<XmlElement>& elements, std::string_view name) {
    std::vector<XmlElement> found;
    for (const XmlElement& element : elements) {
        if (element.mName == name) {
            found.push_back(element);
        }
    }
    return found;
}

std::string describeElements(const std::vector<XmlElement>& elements) {
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
