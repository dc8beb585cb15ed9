#include "platform/encoding/PictureKind.h"

namespace kt::encoding {

std::string_view getPictureType(std::string_view head) {
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
    if (head.starts_with("RIFF"sv) && head.size() >= sPictureHeadSize && head.substr(8).starts_with("WEBP"sv)) {
        return "image/webp";
    }
    return {};
}

}  // namespace kt::encoding
