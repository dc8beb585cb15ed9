#include "platform/svg/PictureDefinitions_p.h"
#include "platform/svg/ReservedId_p.h"
#include "platform/svg/TextBuffer_p.h"

namespace kt::svg {

namespace {

constexpr std::string_view sElementEnd = "\"/>\n";

}  // namespace

bool PictureDefinitions::isReserved(std::string_view id) { return isNumberedId(id, 'p'); }

PictureDefinitions::Entry PictureDefinitions::define(std::string_view source) {
    // Usually the source is spelt as it is written here: no need to decode it again.
    if (const auto found = mNumbers.find(source); found != mNumbers.end()) {
        return {found->second, nullptr};
    }
    const Picture picture(source);
    if (picture.getProblem() != nullptr) {
        return {0, picture.getProblem()};
    }
    const auto number = static_cast<unsigned>(mElements.size()) + 1;
    std::string& element = mElements.emplace_back();
    element = "<image id=\"p" + std::to_string(number) +
              "\" width=\"1\" height=\"1\" preserveAspectRatio=\"none\" xlink:href=\"";
    const std::size_t uriStart = element.size();
    element.reserve(uriStart + picture.getDataUriSize() + sElementEnd.size());
    TextBuffer buffer(element);
    picture.appendDataUri(buffer);
    buffer.append(sElementEnd);
    buffer.flush();
    const std::string_view uri(element.data() + uriStart, element.size() - uriStart - sElementEnd.size());
    const auto [entry, isNew] = mNumbers.try_emplace(uri, number);
    if (!isNew) {
        mElements.pop_back();
    }
    return {entry->second, nullptr};
}

void PictureDefinitions::appendElements(std::vector<std::string_view>& pieces) const {
    pieces.insert(pieces.end(), mElements.begin(), mElements.end());
}

}  // namespace kt::svg
