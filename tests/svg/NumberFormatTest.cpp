#include "platform/svg/NumberFormat_p.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace kt::svg {
namespace {

std::string toText(double value, int decimals) {
    char text[sMaxNumberLength];
    return {text,
            decimals == sCoordinateDecimals ? formatCoordinate(text, value) : formatNumber(text, value, decimals)};
}

TEST(NumberFormat, WritesTheShortestTextWithinTheDecimals) {
    using Rows = std::vector<std::pair<double, const char*>>;
    const std::pair<int, Rows> tables[] = {
        {3,
         {{0.0, "0"},
          {-0.0, "0"},
          {-0.0004, "0"},
          {-0.0006, "-0.001"},
          {0.0005, "0.001"},
          {0.9996, "1"},
          {-1.0, "-1"}}},
        {3,
         {{12.3, "12.3"}, {12.34, "12.34"}, {12.3456, "12.346"}, {12.05, "12.05"}, {100.0, "100"}, {1000.0, "1000"}}},
        {3,
         {{999.9994, "999.999"}, {-4294967.0, "-4294967"}, {4294968.25, "4294968.25"}, {123456789.5, "123456789.5"}}},
        {3, {{12345678901.5, "12345678901.5"}, {1e30, "1e+30"}}},
        {0, {{1.5, "2"}, {-0.4, "0"}}},
        {4, {{0.00012, "0.0001"}}},
        {9, {{0.5, "0.5"}, {0.000000001, "0.000000001"}, {-0.7071067811865476, "-0.707106781"}}},
        {sMaxDecimals + 1, {{0.1, "0.1"}}},
    };
    for (const auto& [decimals, rows] : tables) {
        for (const auto& [value, text] : rows) {
            EXPECT_EQ(toText(value, decimals), text) << value;
        }
    }
}

TEST(NumberFormat, FitsItsRoomAtTheLimitsOfTheType) {
    for (const double value : {std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest(),
                               std::numeric_limits<double>::denorm_min(), -2.2250738585072014e-308}) {
        for (int decimals = 0; decimals <= sMaxDecimals + 1; ++decimals) {
            const std::string text = toText(value, decimals);
            EXPECT_LE(text.size(), std::size_t{sMaxNumberLength});
            EXPECT_NEAR(std::strtod(text.c_str(), nullptr), value, 1.0);
        }
    }
}

TEST(NumberFormat, KeepsRandomNumbersWithinTheirTolerance) {
    std::mt19937_64 random(7);
    for (int count = 0; count < 200'000; ++count) {
        const double magnitude = std::pow(10.0, std::uniform_real_distribution<double>(-6.0, 9.0)(random));
        const double value = std::uniform_real_distribution<double>(-magnitude, magnitude)(random);
        const int decimals = std::uniform_int_distribution<int>(0, sMaxDecimals)(random);
        const std::string text = toText(value, decimals);
        const double tolerance = 0.5 * std::pow(10.0, -decimals);
        ASSERT_NEAR(std::strtod(text.c_str(), nullptr), value, tolerance * (1.0 + 1e-3))
            << text << " decimals " << decimals;
        ASSERT_TRUE(text.find('.') == std::string::npos || text.back() != '0') << text;
    }
}

TEST(NumberFormat, KeepsFactorsFarBelowTheTolerance) {
    for (const double value : {1.0, -1.0, 0.70710677, 1.0 / 3.0, 1234.5678901234, 1e-3 / 3.0, 4.37e-8, 1e12 / 7.0}) {
        char text[sMaxNumberLength];
        const std::string written(text, formatFactor(text, value));
        EXPECT_NEAR(std::strtod(written.c_str(), nullptr), value, std::max(5.1e-10, std::abs(value) * 1e-15))
            << written;
    }
}

}  // namespace
}  // namespace kt::svg
