#include "platform/svg/NumberFormat_p.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace kt::svg {

namespace {

// What this saves beside std::to_chars: benchmarks/RESULTS.md, number text.

/// Three characters and how many of them count: one copy of four bytes writes any group of three digits.
using DigitGroup = std::array<char, 4>;

constexpr char digit(int value) { return static_cast<char>('0' + value); }

/// 0 to 999 without leading zeros.
constexpr auto sIntegerGroups = [] {
    std::array<DigitGroup, 1000> groups{};
    for (int value = 0; value < 1000; ++value) {
        DigitGroup& group = groups[static_cast<std::size_t>(value)];
        if (value >= 100) {
            group = {digit(value / 100), digit(value / 10 % 10), digit(value % 10), 3};
        } else if (value >= 10) {
            group = {digit(value / 10), digit(value % 10), '0', 2};
        } else {
            group = {digit(value), '0', '0', 1};
        }
    }
    return groups;
}();

/// 0 to 999 with leading zeros; as thousandths without trailing zeros they take so many characters behind the number,
/// the point counted.
constexpr auto sFractionGroups = [] {
    std::array<DigitGroup, 1000> groups{};
    for (int value = 0; value < 1000; ++value) {
        const int length = value == 0 ? 0 : (value % 100 == 0 ? 2 : (value % 10 == 0 ? 3 : 4));
        groups[static_cast<std::size_t>(value)] = {digit(value / 100), digit(value / 10 % 10), digit(value % 10),
                                                   static_cast<char>(length)};
    }
    return groups;
}();

constexpr std::array<std::uint64_t, sMaxDecimals + 1> sPowersOfTen = {
    1, 10, 100, 1'000, 10'000, 100'000, 1'000'000, 10'000'000, 100'000'000, 1'000'000'000};

/// Scaled numbers below this are whole numbers that a double and the digit writers hold without loss.
constexpr double sMaxScaled = 1e12;

char* writeInteger(char* out, std::uint64_t value) {
    if (value < 1000) {
        const DigitGroup& group = sIntegerGroups[value];
        std::memcpy(out, group.data(), group.size());
        return out + group[3];
    }
    if (value < 1'000'000) {
        const DigitGroup& thousands = sIntegerGroups[value / 1000];
        const DigitGroup& rest = sFractionGroups[value % 1000];
        std::memcpy(out, thousands.data(), thousands.size());
        std::memcpy(out + thousands[3], rest.data(), rest.size());
        return out + thousands[3] + 3;
    }
    return std::to_chars(out, out + sMaxNumberLength, value).ptr;
}

/// Writes a point and the decimals of value / 10^decimals without trailing zeros; nothing when value is 0.
char* writeFraction(char* out, std::uint64_t value, int decimals) {
    if (value == 0) {
        return out;
    }
    while (value % 10 == 0) {
        value /= 10;
        --decimals;
    }
    *out = '.';
    char* const end = out + decimals + 1;
    for (char* position = end - 1; position > out; --position) {
        *position = digit(static_cast<int>(value % 10));
        value /= 10;
    }
    return end;
}

char* writeShortest(char* out, double value) {
    // Exponents only where they spare a row of zeros.
    constexpr double maxPlain = 1e15;
    if (std::abs(value) >= 1.0 && std::abs(value) < maxPlain) {
        return std::to_chars(out, out + sMaxNumberLength, value, std::chars_format::fixed).ptr;
    }
    return std::to_chars(out, out + sMaxNumberLength, value == 0.0 ? 0.0 : value).ptr;
}

}  // namespace

char* formatCoordinate(char* out, double value) {
    const double scaled = std::abs(value) * 1000.0 + 0.5;
    if (!(scaled < 4e9)) {
        return formatNumber(out, value, sCoordinateDecimals);
    }
    const auto thousandths = static_cast<std::uint32_t>(scaled);
    *out = '-';
    out += static_cast<int>(value < 0.0) & static_cast<int>(thousandths != 0);
    out = writeInteger(out, thousandths / 1000);
    const DigitGroup& fraction = sFractionGroups[thousandths % 1000];
    *out = '.';
    std::memcpy(out + 1, fraction.data(), fraction.size());
    return out + fraction[3];
}

char* formatNumber(char* out, double value, int decimals) {
    if (decimals > sMaxDecimals) {
        return writeShortest(out, value);
    }
    const std::uint64_t power = sPowersOfTen[static_cast<std::size_t>(decimals)];
    const double scaled = std::abs(value) * static_cast<double>(power) + 0.5;
    if (!(scaled < sMaxScaled)) {
        return writeShortest(out, value);
    }
    const auto units = static_cast<std::uint64_t>(scaled);
    *out = '-';
    out += static_cast<int>(value < 0.0) & static_cast<int>(units != 0);
    return writeFraction(writeInteger(out, units / power), units % power, decimals);
}

char* formatFactor(char* out, double value) {
    // Below this the last of the decimals would be more than a millionth of the factor.
    constexpr double minFixed = 1e-3;
    const double size = std::abs(value);
    return size == 0.0 || size >= minFixed ? formatNumber(out, value, sMaxDecimals) : writeShortest(out, value);
}

}  // namespace kt::svg
