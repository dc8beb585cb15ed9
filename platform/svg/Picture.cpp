#include "platform/svg/Picture_p.h"
#include "platform/svg/TextBuffer_p.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace kt::svg {

namespace {

constexpr std::string_view sAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t sNoDigit = 0xFF;
using Kind = SvgWriter::Warning::Kind;

constexpr Picture::Problem sUnknown{Kind::PictureUnknown, "is not a PNG, JPEG, GIF or WebP picture"};
constexpr Picture::Problem sTooLarge{Kind::PictureTooLarge, "is larger than 7,400,000 bytes"};
constexpr Picture::Problem sWithoutData{Kind::PictureWithoutData, "is a data URI without data"};
constexpr Picture::Problem sNotBase64{Kind::PictureNotBase64, "is a data URI whose data is not base64"};

/// Enough of a file to tell its kind, and a whole number of base64 groups.
constexpr std::size_t sHeadSize = 12;

constexpr auto sDigits = [] {
    std::array<std::uint8_t, 256> digits{};
    digits.fill(sNoDigit);
    for (std::size_t index = 0; index < sAlphabet.size(); ++index) {
        digits[static_cast<unsigned char>(sAlphabet[index])] = static_cast<std::uint8_t>(index);
    }
    return digits;
}();

std::uint8_t digitOf(char character) { return sDigits[static_cast<unsigned char>(character)]; }

bool isBlank(char character) {
    return character == ' ' || character == '\t' || character == '\n' || character == '\r' || character == '\f';
}

char toLower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return toLower(x) == toLower(y); });
}

/// The media type of a picture file that begins so; empty for any other.
std::string_view sniffMediaType(std::string_view head) {
    using namespace std::string_view_literals;
    if (head.starts_with("\x89PNG\r\n\x1A\n"sv)) {
        return "image/png";
    }
    if (head.starts_with("\xFF\xD8\xFF"sv)) {
        return "image/jpeg";
    }
    if (head.starts_with("GIF87a"sv) || head.starts_with("GIF89a"sv)) {
        return "image/gif";
    }
    if (head.starts_with("RIFF"sv) && head.size() >= sHeadSize && head.substr(8).starts_with("WEBP"sv)) {
        return "image/webp";
    }
    return {};
}

int hexDigit(char character) {
    const char lower = toLower(character);
    if (lower >= '0' && lower <= '9') {
        return lower - '0';
    }
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::string decodePercent(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] == '%' && index + 2 < text.size() && hexDigit(text[index + 1]) >= 0 &&
            hexDigit(text[index + 2]) >= 0) {
            decoded.push_back(static_cast<char>(hexDigit(text[index + 1]) * 16 + hexDigit(text[index + 2])));
            index += 2;
        } else {
            decoded.push_back(text[index]);
        }
    }
    return decoded;
}

/// Encodes whole groups of three bytes, and the padded rest when there is one.
char* encodeBase64(char* out, std::string_view bytes) {
    const auto byteAt = [&](std::size_t index) {
        return index < bytes.size() ? static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[index])) : 0U;
    };
    for (std::size_t index = 0; index < bytes.size(); index += 3) {
        const std::uint32_t group = byteAt(index) << 16U | byteAt(index + 1) << 8U | byteAt(index + 2);
        const std::size_t left = bytes.size() - index;
        *out++ = sAlphabet[group >> 18U];
        *out++ = sAlphabet[group >> 12U & 63U];
        *out++ = left > 1 ? sAlphabet[group >> 6U & 63U] : '=';
        *out++ = left > 2 ? sAlphabet[group & 63U] : '=';
    }
    return out;
}

/// The file's first bytes; base64 holds digits and padding only.
std::string decodeHead(std::string_view base64) {
    std::string head;
    std::uint32_t group = 0;
    unsigned bits = 0;
    for (const char character : base64.substr(0, sHeadSize / 3 * 4)) {
        if (character == '=') {
            break;
        }
        group = group << 6U | digitOf(character);
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            head.push_back(static_cast<char>(group >> bits & 0xFFU));
        }
    }
    return head;
}

/// Drops blanks and sets the padding right; false when there is anything but base64.
bool cleanBase64(std::string_view text, std::string& base64) {
    base64.reserve(text.size() + 2);
    std::size_t index = 0;
    for (; index < text.size(); ++index) {
        if (digitOf(text[index]) != sNoDigit) {
            base64.push_back(text[index]);
        } else if (!isBlank(text[index])) {
            break;
        }
    }
    const std::string_view rest = text.substr(index);
    if (!std::all_of(rest.begin(), rest.end(), [](char character) { return character == '=' || isBlank(character); }) ||
        base64.size() % 4 == 1) {
        return false;
    }
    base64.append((4 - base64.size() % 4) % 4, '=');
    return true;
}

std::size_t getDecodedSize(std::string_view base64) {
    const std::size_t padding = base64.ends_with("==") ? 2 : (base64.ends_with('=') ? 1 : 0);
    return base64.size() / 4 * 3 - padding;
}

}  // namespace

Picture::Picture(std::string_view source) {
    constexpr std::string_view scheme = "data:";
    if (equalsIgnoringCase(source.substr(0, scheme.size()), scheme)) {
        readDataUri(source.substr(scheme.size()));
        return;
    }
    mBytes = source;
    setType(source.substr(0, sHeadSize));
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
        if (!cleanBase64(text, mBase64)) {
            mProblem = &sNotBase64;
            return;
        }
    } else {
        mBase64.resize((text.size() + 2) / 3 * 4);
        encodeBase64(mBase64.data(), text);
    }
    setType(decodeHead(mBase64));
    if (mProblem == nullptr && getDecodedSize(mBase64) > sMaxSize) {
        mProblem = &sTooLarge;
    }
}

void Picture::setType(std::string_view head) {
    mMediaType = sniffMediaType(head);
    if (mMediaType.empty()) {
        mProblem = &sUnknown;
    }
}

void Picture::appendDataUri(TextBuffer& buffer) const {
    buffer.append("data:");
    buffer.append(mMediaType);
    buffer.append(";base64,");
    buffer.append(mBase64);
    constexpr std::size_t step = TextBuffer::sMaxReserve / 4 * 3;
    for (std::size_t start = 0; start < mBytes.size(); start += step) {
        buffer.commit(encodeBase64(buffer.reserve(TextBuffer::sMaxReserve), mBytes.substr(start, step)));
    }
}

}  // namespace kt::svg
