#include "platform/encoding/PictureKind.h"

#include <cstdint>

namespace kt::encoding {

namespace {

using namespace std::string_view_literals;

constexpr std::size_t sPngSignatureSize = 8;

std::uint32_t byteAt(std::string_view file, std::size_t position) { return static_cast<unsigned char>(file[position]); }

std::uint32_t readBigEndian(std::string_view file, std::size_t position) {
    return byteAt(file, position) << 24U | byteAt(file, position + 1) << 16U | byteAt(file, position + 2) << 8U |
           byteAt(file, position + 3);
}

/// Chunks of a length, a name, the data and a check sum, from IHDR with the size to IEND.
bool isWholePng(std::string_view file) {
    constexpr std::size_t chunkSize = 12;  // without its data
    constexpr std::size_t headSize = 13;
    std::size_t position = sPngSignatureSize;
    if (file.size() < position + chunkSize + headSize || file.substr(position + 4, 4) != "IHDR"sv ||
        readBigEndian(file, position + 8) == 0 || readBigEndian(file, position + 12) == 0) {
        return false;
    }
    while (file.size() - position >= chunkSize) {
        const std::size_t length = readBigEndian(file, position);
        if (length > file.size() - position - chunkSize) {
            return false;
        }
        if (file.substr(position + 4, 4) == "IEND"sv) {
            return true;
        }
        position += chunkSize + length;
    }
    return false;
}

/// Segments of a marker and a length up to the scan, whose end is a marker; one of the frame holds the size.
bool isWholeJpeg(std::string_view file) {
    bool hasSize = false;
    std::size_t position = 2;
    while (position + 4 <= file.size() && byteAt(file, position) == 0xFF) {
        const std::uint32_t marker = byteAt(file, position + 1);
        if (marker == 0xFF) {
            ++position;  // fill
            continue;
        }
        const bool isFrame = marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (isFrame && position + 9 <= file.size()) {
            hasSize = (byteAt(file, position + 7) | byteAt(file, position + 8)) != 0;
        }
        if (marker == 0xDA) {
            return hasSize && file.find("\xFF\xD9"sv, position) != std::string_view::npos;
        }
        position += 2 + (byteAt(file, position + 2) << 8U | byteAt(file, position + 3));
    }
    return false;
}

/// The size in the head, and a trailer at the end; some writers add zeros.
bool isWholeGif(std::string_view file) {
    constexpr std::size_t headSize = 13;
    const std::size_t last = file.find_last_not_of('\0');
    return file.size() > headSize && (byteAt(file, 6) | byteAt(file, 7)) != 0 &&
           (byteAt(file, 8) | byteAt(file, 9)) != 0 && last != std::string_view::npos && file[last] == ';';
}

/// A RIFF file, whose head tells the size of the rest.
bool isWholeWebP(std::string_view file) {
    constexpr std::size_t headSize = 8;
    constexpr std::size_t chunkSize = 8;
    const std::size_t size = byteAt(file, 4) | byteAt(file, 5) << 8U | byteAt(file, 6) << 16U | byteAt(file, 7) << 24U;
    return size > 4 + chunkSize && size <= file.size() - headSize;
}

}  // namespace

bool isWholePicture(std::string_view file) {
    const std::string_view type = getPictureType(file.substr(0, sPictureHeadSize));
    if (type == "image/png") {
        return isWholePng(file);
    }
    if (type == "image/jpeg") {
        return isWholeJpeg(file);
    }
    return type == "image/gif" ? isWholeGif(file) : type == "image/webp" && isWholeWebP(file);
}

std::string_view getPictureType(std::string_view head) {
    if (head.starts_with("\x89PNG\r\n\x1A\n"sv)) {
        return "image/png";
    }
    if (head.starts_with("\xFF\xD8\xFF"sv)) {
        return "image/jpeg";
    }
    if (head.starts_with("GIF87a"sv) || head.starts_with("GIF89a"sv)) {
        return "image/gif";
    }
    if (head.starts_with("RIFF"sv) && head.size() >= sPictureHeadSize && head.substr(8).starts_with("WEBP"sv)) {
        return "image/webp";
    }
    return {};
}

}  // namespace kt::encoding
