#include "platform/system/variant/ktVariant.h"
#include "platform/system/variant/ktVariantListImpl.h"
#include "platform/system/variant/ktVariantMapImpl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace {

using kt::ktVariant;
using Kind = ktVariant::Kind;
using List = ktVariant::ktVariantListImpl;
using Map = ktVariant::ktVariantMapImpl;
using namespace std::string_literals;

constexpr double sInfinity = std::numeric_limits<double>::infinity();
constexpr std::int64_t sMax = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t sMin = std::numeric_limits<std::int64_t>::min();

struct ConversionCase {
    ktVariant mValue;
    Kind mKind;
    std::string mText;
    bool mBool;
    double mReal;
    std::int64_t mInteger;
};

TEST(Variant, EveryKindConvertsToSomething) {
    std::vector<ConversionCase> rows{
        {ktVariant(), Kind::Undefined, "", false, 0, 0},
        {true, Kind::Boolean, "true", true, 1, 1},
        {false, Kind::Boolean, "false", false, 0, 0},
        {-7, Kind::Integer, "-7", true, -7, -7},
        {sMax, Kind::Integer, "9223372036854775807", true, 9223372036854775807.0, sMax},
        {0, Kind::Integer, "0", false, 0, 0},
        {6.0, Kind::Real, "6", true, 6, 6},
        {-2.75, Kind::Real, "-2.75", true, -2.75, -2},
        {1e22, Kind::Real, "1e+22", true, 1e22, sMax},
        {-1e300, Kind::Real, "-1e+300", true, -1e300, sMin},
        {-0.0, Kind::Real, "-0", false, 0, 0},
        {0.1F, Kind::Real, "0.10000000149011612", true, static_cast<double>(0.1F), 0},
        {sInfinity, Kind::Real, "inf", true, sInfinity, sMax},
        {static_cast<const char*>(nullptr), Kind::String, "", false, 0, 0},
        {Map{{"a", 1}}, Kind::Map, "", false, 0, 0},
        {List{1, 2}, Kind::List, "", false, 0, 0},
    };
    const std::tuple<const char*, bool, double, std::int64_t> texts[] = {
        {"true", true, 0, 0},
        {"1", true, 1, 1},
        {"2", false, 2, 2},
        {"-1.5e2", false, -150, -150},
        {"123456789012345678901234567890", false, 123456789012345678901234567890.0, sMax},
        {"1e999", false, sInfinity, sMax},
        {"-1e-999", false, 0, 0}};
    for (const auto& [text, truth, real, integer] : texts) {
        rows.push_back({text, Kind::String, text, truth, real, integer});
    }
    for (const char* text : {"", "TRUE", "1,5", " 1", "1 ", "+1", ".5", "01", "1.", "1e", "0x10", "nan"}) {
        rows.push_back({text, Kind::String, text, false, 0, 0});
    }
    for (const ConversionCase& row : rows) {
        SCOPED_TRACE(row.mText);
        EXPECT_EQ(row.mValue.getKind(), row.mKind);
        EXPECT_EQ(row.mValue.toString(), row.mText);
        EXPECT_EQ(row.mValue.toBool(), row.mBool);
        EXPECT_EQ(row.mValue.toReal(), row.mReal);
        EXPECT_EQ(row.mValue.toInteger(), row.mInteger);
        EXPECT_EQ(row.mValue.toMap().size(), row.mKind == Kind::Map ? 1U : 0U);
        EXPECT_EQ(row.mValue.toList().size(), row.mKind == Kind::List ? 2U : 0U);
    }
    const ktVariant notANumber(std::nan(""));
    EXPECT_TRUE(notANumber.toBool());
    EXPECT_EQ(notANumber.toInteger(), 0);
    EXPECT_FALSE(notANumber == notANumber);
}

TEST(Variant, TextsOfEveryLengthSurviveCopyAndMove) {
    for (std::size_t length = 0; length < 40; ++length) {
        std::string text(length, 'x');
        for (std::size_t index = 0; index < length; ++index) {
            text[index] = static_cast<char>(index * 7);  // NUL and bytes beyond ASCII included
        }
        ktVariant value(text);
        ktVariant copy(value);
        EXPECT_EQ(copy.getStringView(), text);
        EXPECT_TRUE(copy == value);
        const ktVariant moved(std::move(value));
        EXPECT_EQ(moved.toString(), text);
        copy = ktVariant(1);
        EXPECT_EQ(moved.getStringView(), text);
        EXPECT_FALSE(copy == moved);
    }
}

TEST(Variant, TakesAPartOfItself) {
    ktVariant value(Map{{"a", Map{{"b", "inner"}}}});
    value = (*value.editMap())["a"];
    value = std::move((*value.editMap())["b"]);
    EXPECT_EQ(value.toString(), "inner");
}

TEST(Variant, EqualOnlyWithinAKind) {
    const ktVariant values[] = {ktVariant(), 1,          1.0,     true,          "1",          Map(),
                                List(),      List{1, 2}, List{1}, Map{{"a", 1}}, Map{{"b", 1}}};
    for (const ktVariant& a : values) {
        for (const ktVariant& b : values) {
            EXPECT_EQ(a == ktVariant(b), &a == &b) << &a - values << " and " << &b - values;
        }
    }
}

/// Whether the map holds these entries in this order.
bool holds(const Map& map, const std::map<std::string, std::int64_t>& expected) {
    return std::ranges::equal(map, expected, [](const auto& entry, const auto& wanted) {
        return entry.first == wanted.first && entry.second.toInteger() == wanted.second;
    });
}

TEST(VariantMap, BehavesLikeAStandardMap) {
    const std::string heads[] = {
        ""s, "B"s, "\xC3\xA4"s, "k\0"s, "k\0\0"s, "123456789012345"s, "a key not kept inside"s};
    std::mt19937 random(1);
    Map map;
    Map appended;
    std::map<std::string, std::int64_t> expected;
    std::map<std::string, std::int64_t> lasts;
    for (int step = 0; step < 4000; ++step) {
        std::string key = heads[random() % std::size(heads)];
        key.append(random() % 3, static_cast<char>(random() % 8));
        const auto operation = random() % 4;
        if (operation == 0) {
            EXPECT_EQ(map.insert_or_assign(key, step).second, expected.insert_or_assign(key, step).second);
        } else if (operation == 1) {
            EXPECT_EQ(map.emplace(key, step).second, expected.emplace(key, step).second);
        } else if (operation == 2) {
            map[key] = expected[key] = step;
        } else {
            EXPECT_EQ(map.erase(key), expected.erase(key));
        }
        EXPECT_EQ(map.contains(key), expected.contains(key));
        appended.append(key, step);
        lasts[key] = step;
    }
    appended.finish();
    EXPECT_TRUE(holds(map, expected));
    EXPECT_TRUE(holds(appended, lasts));
    EXPECT_EQ((Map{{"a", 1}, {"b", 2}, {"a", 3}}).at("a").toInteger(), 3);
}

}  // namespace
