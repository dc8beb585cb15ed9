#include "platform/svg/PictureDefinitions_p.h"
#include "platform/svg/ReservedId_p.h"

namespace kt::svg {

namespace {

constexpr std::string_view sElementEnd = "\"/>\n";

/// The text of a buffer that was made as large as it needed to be.
std::string_view getText(const TextBuffer& buffer) {
    std::vector<std::string_view> pieces;
    buffer.appendPieces(pieces);
    return pieces.front();
}

}  // namespace

bool PictureDefinitions::isReserved(std::string_view id) { return isNumberedId(id, 'p'); }

PictureDefinitions::Entry PictureDefinitions::define(std::string_view source) {
    // Usually the source is spelt as it is written here: no need to decode it again.
    if (const auto found = mEntries.find(source); found != mEntries.end()) {
        return found->second;
    }
    const Picture picture(source);
    if (picture.getProblem() != nullptr) {
        return {0, false, picture.getProblem()};
    }
    const auto number = static_cast<unsigned>(mElements.size()) + 1;
    const std::string start = "<image id=\"p" + std::to_string(number) +
                              "\" width=\"1\" height=\"1\" preserveAspectRatio=\"none\" xlink:href=\"";
    TextBuffer& element = mElements.emplace_back(start.size() + picture.getDataUriSize() + sElementEnd.size());
    element.append(start);
    picture.appendDataUri(element);
    const std::string_view uri = getText(element).substr(start.size());
    element.append(sElementEnd);
    const auto [entry, isNew] = mEntries.try_emplace(uri, Entry{number, picture.isDamaged(), nullptr});
    if (!isNew) {
        mElements.pop_back();
    }
    return entry->second;
}

void PictureDefinitions::appendElements(std::vector<std::string_view>& pieces) const {
    for (const TextBuffer& element : mElements) {
        element.appendPieces(pieces);
    }
}

}  // namespace kt::svg
