#include "document/ktLegacyFinding.h"

#include "platform/encoding/Utf8.h"

#include <utility>

namespace ktLegacy {

namespace {

void append(std::string& place, const std::string& part) { place += (place.empty() ? "" : ", ") + part; }

std::string quote(const std::string& name) { return name.empty() ? std::string() : " '" + name + "'"; }

}  // namespace

ktLegacyFinding::ktLegacyFinding(ktFindingCode code, std::string what) : mCode(code), mWhat(std::move(what)) {
    mWhat = mWhat.empty() ? getFindingKind(code).mSentence : escapeInvalidUtf8(mWhat);
}

std::string ktLegacyFinding::describePlace() const {
    std::string place;
    if (mView) {
        append(place, "view " + std::to_string(*mView + 1) + quote(mViewName));
    }
    if (mAnnotation) {
        append(place, "annotation " + std::to_string(*mAnnotation) + quote(mAnnotationName));
    }
    if (!mChild.empty()) {
        std::string path;
        for (const std::uint32_t index : mChild) {
            path += (path.empty() ? "" : "/") + std::to_string(index);
        }
        append(place, "nested " + path);
    }
    if (mObject && *mObject != 0) {
        append(place, "object " + std::to_string(*mObject));
    }
    if (mLine) {
        append(place, "line " + std::to_string(*mLine) + ", column " + std::to_string(mColumn.value_or(1)));
    } else if (mOffset) {
        append(place, "byte " + std::to_string(*mOffset));
    }
    return place;
}

std::string ktLegacyFinding::getName() const {
    return mViewName.empty() || mAnnotationName.empty() ? mViewName + mAnnotationName
                                                        : mViewName + "/" + mAnnotationName;
}

std::string escapeInvalidUtf8(std::string_view text) {
    static constexpr std::string_view sDigits = "0123456789abcdef";
    std::string escaped;
    escaped.reserve(text.size());
    while (!text.empty()) {
        const kt::encoding::Utf8Character character = kt::encoding::decodeUtf8(text);
        if (character.mIsValid) {
            escaped += text.substr(0, character.mLength);
        } else {
            const auto byte = static_cast<unsigned char>(text.front());
            escaped += "\\x";
            escaped += sDigits[byte >> 4U];
            escaped += sDigits[byte & 15U];
        }
        text.remove_prefix(character.mLength);
    }
    return escaped;
}

}  // namespace ktLegacy
