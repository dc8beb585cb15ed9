#include "platform/system/ktVariant.h"
#include "platform/system/ktVariantListImpl.h"
#include "platform/system/ktVariantMapImpl.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

using kt::ktVariant;
using Kind = ktVariant::Kind;
using List = ktVariant::ktVariantListImpl;
using Map = ktVariant::ktVariantMapImpl;

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
    const ConversionCase cases[] = {
        {ktVariant(), Kind::Undefined, "", false, 0, 0},
        {ktVariant(true), Kind::Boolean, "true", true, 1, 1},
        {ktVariant(false), Kind::Boolean, "false", false, 0, 0},
        {ktVariant(-7), Kind::Integer, "-7", true, -7, -7},
        {ktVariant(sMax), Kind::Integer, "9223372036854775807", true, 9223372036854775807.0, sMax},
        {ktVariant(0), Kind::Integer, "0", false, 0, 0},
        {ktVariant(6.0), Kind::Real, "6", true, 6, 6},
        {ktVariant(-2.75), Kind::Real, "-2.75", true, -2.75, -2},
        {ktVariant(1e22), Kind::Real, "1e+22", true, 1e22, sMax},
        {ktVariant(-1e300), Kind::Real, "-1e+300", true, -1e300, sMin},
        {ktVariant(-0.0), Kind::Real, "-0", false, 0, 0},
        {ktVariant(0.1F), Kind::Real, "0.10000000149011612", true, static_cast<double>(0.1F), 0},
        {ktVariant(sInfinity), Kind::Real, "inf", true, sInfinity, sMax},
        {ktVariant(""), Kind::String, "", false, 0, 0},
        {ktVariant("true"), Kind::String, "true", true, 0, 0},
        {ktVariant("1"), Kind::String, "1", true, 1, 1},
        {ktVariant("TRUE"), Kind::String, "TRUE", false, 0, 0},
        {ktVariant("2"), Kind::String, "2", false, 2, 2},
        {ktVariant("-1.5e2"), Kind::String, "-1.5e2", false, -150, -150},
        {ktVariant("1,5"), Kind::String, "1,5", false, 0, 0},
        {ktVariant(" 1"), Kind::String, " 1", false, 0, 0},
        {ktVariant("1 "), Kind::String, "1 ", false, 0, 0},
        {ktVariant("+1"), Kind::String, "+1", false, 0, 0},
        {ktVariant(".5"), Kind::String, ".5", false, 0, 0},
        {ktVariant("01"), Kind::String, "01", false, 0, 0},
        {ktVariant("1."), Kind::String, "1.", false, 0, 0},
        {ktVariant("1e"), Kind::String, "1e", false, 0, 0},
        {ktVariant("0x10"), Kind::String, "0x10", false, 0, 0},
        {ktVariant("nan"), Kind::String, "nan", false, 0, 0},
        {ktVariant("123456789012345678901234567890"), Kind::String, "123456789012345678901234567890", false,
         123456789012345678901234567890.0, sMax},
        {ktVariant("1e999"), Kind::String, "1e999", false, sInfinity, sMax},
        {ktVariant("-1e-999"), Kind::String, "-1e-999", false, 0, 0},
        {ktVariant(static_cast<const char*>(nullptr)), Kind::String, "", false, 0, 0},
        {ktVariant(Map{{"a", 1}}), Kind::Map, "", false, 0, 0},
        {ktVariant(List{1, 2}), Kind::List, "", false, 0, 0},
    };
    for (const ConversionCase& conversion : cases) {
        SCOPED_TRACE(conversion.mText);
        EXPECT_EQ(conversion.mValue.getKind(), conversion.mKind);
        EXPECT_EQ(conversion.mValue.toString(), conversion.mText);
        EXPECT_EQ(conversion.mValue.toBool(), conversion.mBool);
        EXPECT_EQ(conversion.mValue.toReal(), conversion.mReal);
        EXPECT_EQ(conversion.mValue.toInteger(), conversion.mInteger);
        EXPECT_EQ(conversion.mValue.toMap().size(), conversion.mKind == Kind::Map ? 1U : 0U);
        EXPECT_EQ(conversion.mValue.toList().size(), conversion.mKind == Kind::List ? 2U : 0U);
    }
    const ktVariant notANumber(std::nan(""));
    EXPECT_TRUE(notANumber.toBool());
    EXPECT_EQ(notANumber.toInteger(), 0);
    EXPECT_FALSE(notANumber == notANumber);
}

TEST(Variant, EveryFloatComesOutUnchanged) {
    for (const float number : {0.1F, -0.0F, 1e-45F, std::numeric_limits<float>::max(), 16777217.0F}) {
        const auto back = static_cast<float>(ktVariant(number).toReal());
        EXPECT_EQ(std::signbit(back), std::signbit(number));
        EXPECT_EQ(back, number);
    }
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

TEST(Variant, CopiesAreDeep) {
    ktVariant value(Map{{"list", List{1, Map{{"deep", "text that needs storage"}}}}});
    const ktVariant copy(value);
    EXPECT_TRUE(copy == value);
    (*value.editMap())["list"].editList()->at(1).editMap()->at("deep") = ktVariant(2);
    EXPECT_FALSE(copy == value);
    EXPECT_EQ(copy.getMap()->at("list").getList()->at(1).getMap()->at("deep").toString(), "text that needs storage");
}

TEST(Variant, TakesAPartOfItself) {
    ktVariant value(List{List{"inner"}, 2});
    value = value.editList()->at(0);
    ASSERT_TRUE(value.isList());
    EXPECT_EQ(value.getList()->at(0).toString(), "inner");
    value = std::move(value.editList()->at(0));
    EXPECT_EQ(value.toString(), "inner");
}

TEST(Variant, EqualOnlyWithinAKind) {
    EXPECT_FALSE(ktVariant(1) == ktVariant(1.0));
    EXPECT_FALSE(ktVariant(1) == ktVariant(true));
    EXPECT_FALSE(ktVariant(Map()) == ktVariant(List()));
    EXPECT_TRUE(ktVariant(Map()) == ktVariant(Map{}));
    EXPECT_FALSE(ktVariant(List{1, 2}) == ktVariant(List{1}));
    EXPECT_FALSE(ktVariant(Map{{"a", 1}}) == ktVariant(Map{{"b", 1}}));
}

/// Maps and lists in turn, each the only value of the one around it.
ktVariant makeNested(int levels) {
    ktVariant value("innermost text of some length");
    for (int level = 0; level < levels; ++level) {
        if (level % 2 == 0) {
            List list;
            list.push_back(std::move(value));
            value = ktVariant(std::move(list));
        } else {
            Map map;
            map.append("the only key, which is long", std::move(value));
            map.append("z", ktVariant(level));
            value = ktVariant(std::move(map));
        }
    }
    return value;
}

TEST(Variant, AnyNestingIsCopiedComparedAndDestroyed) {
    const ktVariant value = makeNested(200'000);
    ktVariant copy(value);
    EXPECT_TRUE(copy == value);
    EXPECT_FALSE(makeNested(199'998) == value);
    copy = ktVariant();
    EXPECT_TRUE(copy.isUndefined());
}

TEST(Variant, ListGrows) {
    List list;
    for (int index = 0; index < 1000; ++index) {
        list.emplace_back(index % 3 == 0 ? ktVariant(std::string(30, 'a')) : ktVariant(index));
    }
    ASSERT_EQ(list.size(), 1000U);
    EXPECT_EQ(list[999].toString(), std::string(30, 'a'));
    EXPECT_EQ(list.at(998).toInteger(), 998);
    EXPECT_THROW(list.at(1000), std::out_of_range);
    list.push_back(list[0]);
    EXPECT_TRUE(list.back() == list.front());
}

}  // namespace
