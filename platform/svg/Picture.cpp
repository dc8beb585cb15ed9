#include "platform/encoding/Base64.h"
#include "platform/encoding/Hex.h"
#include "platform/encoding/PictureKind.h"
#include "platform/svg/Picture_p.h"
#include "platform/svg/TextBuffer_p.h"

#include <algorithm>

namespace kt::svg {

namespace {

using Kind = SvgWriter::Warning::Kind;

constexpr Picture::Problem sUnknown{Kind::PictureUnknown, "is not a PNG, JPEG, GIF or WebP picture"};
constexpr Picture::Problem sTooLarge{Kind::PictureTooLarge, "is larger than 7,400,000 bytes"};
constexpr Picture::Problem sWithoutData{Kind::PictureWithoutData, "is a data URI without data"};
constexpr Picture::Problem sNotBase64{Kind::PictureNotBase64, "is a data URI whose data is not base64"};

/// Around the media type in a data URI.
constexpr std::string_view sScheme = "data:";
constexpr std::string_view sEncoding = ";base64,";

char toLower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return toLower(x) == toLower(y); });
}

std::string decodePercent(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] == '%' && index + 2 < text.size() && encoding::hexValue(text[index + 1]) >= 0 &&
            encoding::hexValue(text[index + 2]) >= 0) {
            decoded.push_back(
                static_cast<char>(encoding::hexValue(text[index + 1]) * 16 + encoding::hexValue(text[index + 2])));
            index += 2;
        } else {
            decoded.push_back(text[index]);
        }
    }
    return decoded;
}

}  // namespace

Picture::Picture(std::string_view source) {
    if (equalsIgnoringCase(source.substr(0, sScheme.size()), sScheme)) {
        readDataUri(source.substr(sScheme.size()));
        return;
    }
    mBytes = source;
    setType(source.substr(0, encoding::sPictureHeadSize));
    if (mProblem == nullptr && source.size() > sMaxSize) {
        mProblem = &sTooLarge;
    }
}

void Picture::readDataUri(std::string_view uri) {
    const std::size_t comma = uri.find(',');
    const std::string_view header = uri.substr(0, comma);
    if (comma == std::string_view::npos) {
        mProblem = &sWithoutData;
        return;
    }
    const std::string_view data = uri.substr(comma + 1);
    // No picture that may be embedded is longer, blanks and escapes in its text included.
    if (data.size() / 4 > sMaxSize) {
        mProblem = &sTooLarge;
        return;
    }
    std::string decoded;
    std::string_view text = data;
    if (data.find('%') != std::string_view::npos) {
        decoded = decodePercent(data);
        text = decoded;
    }
    const std::size_t semicolon = header.rfind(';');
    if (semicolon != std::string_view::npos && equalsIgnoringCase(header.substr(semicolon), ";base64")) {
        if (!encoding::normalizeBase64(text, mBase64)) {
            mProblem = &sNotBase64;
            return;
        }
    } else {
        mBase64 = encoding::encodeBase64(text);
    }
    setType(encoding::decodeBase64(std::string_view(mBase64).substr(0, encoding::sPictureHeadSize / 3 * 4)));
    if (mProblem == nullptr && encoding::getDecodedSize(mBase64) > sMaxSize) {
        mProblem = &sTooLarge;
    }
}

void Picture::setType(std::string_view head) {
    mMediaType = encoding::getPictureType(head);
    if (mMediaType.empty()) {
        mProblem = &sUnknown;
    }
}

bool Picture::isDamaged() const {
    return !encoding::isWholePicture(mBase64.empty() ? mBytes : encoding::decodeBase64(mBase64));
}

std::size_t Picture::getDataUriSize() const {
    return sScheme.size() + mMediaType.size() + sEncoding.size() + mBase64.size() +
           encoding::getBase64Size(mBytes.size());
}

void Picture::appendDataUri(TextBuffer& buffer) const {
    buffer.append(sScheme);
    buffer.append(mMediaType);
    buffer.append(sEncoding);
    buffer.append(mBase64);
    constexpr std::size_t step = TextBuffer::sMaxReserve / 4 * 3;
    for (std::size_t start = 0; start < mBytes.size(); start += step) {
        const std::string_view bytes = mBytes.substr(start, step);
        buffer.commit(encoding::encodeBase64(buffer.reserve(encoding::getBase64Size(bytes.size())), bytes));
    }
}

}  // namespace kt::svg
