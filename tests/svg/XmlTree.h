#pragma once

/// @file
/// XML text as a strict parser reads it.

#include <map>
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

/// The elements in document order; nothing when the text is not well-formed.
std::optional<std::vector<XmlElement>> parseXml(std::string_view text);

/// The elements of this name.
std::vector<XmlElement> findElements(const std::vector<XmlElement>& elements, std::string_view name);

/// The elements below the root, but for styles, a line each: as many dots as elements around it, name, attributes in
/// the order of their names, text (but for the line breaks between elements).
std::string describeElements(const std::vector<XmlElement>& elements);

}  // namespace kt::test
