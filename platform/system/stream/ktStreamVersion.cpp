#include "platform/system/stream/ktStreamVersion.h"

#include <charconv>
#include <optional>

namespace kt {

namespace {

constexpr std::size_t sMaxDigits = 5;
constexpr std::uint32_t sMaxNumber = 65535;

std::optional<std::uint16_t> parseNumber(std::string_view digits) {
    if (digits.empty() || digits.size() > sMaxDigits) {
        return std::nullopt;
    }
    // An unsigned number, so that no sign is accepted.
    std::uint32_t number = 0;
    const char* end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end || number > sMaxNumber) {
        return std::nullopt;
    }
    return static_cast<std::uint16_t>(number);
}

}  // namespace

ktStreamVersion::ktStreamVersion(std::string_view text) {
    const std::size_t dot = text.find('.');
    if (dot == std::string_view::npos) {
        return;
    }
    const auto major = parseNumber(text.substr(0, dot));
    const auto minor = parseNumber(text.substr(dot + 1));
    if (major && minor) {
        *this = ktStreamVersion(*major, *minor);
    }
}

std::string ktStreamVersion::toString() const { return std::to_string(getMajor()) + '.' + std::to_string(getMinor()); }

}  // namespace kt
