#include "platform/system/ktVariantJson.h"
#include "platform/system/ktVariantListImpl.h"
#include "platform/system/ktVariantMapImpl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <span>
#include <string>
#include <string_view>

namespace {

using kt::ktVariant;
using List = ktVariant::ktVariantListImpl;
using Map = ktVariant::ktVariantMapImpl;
using namespace std::string_literals;

/// Parses a copy that ends with its heap block, so that reading beyond the text shows in checked builds.
bool parse(std::string_view text, ktVariant& value, kt::ktJsonError& error) {
    const std::vector<char> bytes(text.begin(), text.end());
    return kt::ktJsonReader().parse(std::as_bytes(std::span(bytes)), value, error);
}

struct AcceptedCase {
    std::string mText;
    ktVariant mValue;
};

TEST(VariantJson, Accepts) {
    const AcceptedCase cases[] = {
        {"42", 42},
        {" -0 ", 0},
        {"-0.0", -0.0},
        {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
        {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
        {"9223372036854775808", 9223372036854775808.0},
        {"123456789012345678901234567890", 123456789012345678901234567890.0},
        {"1.0", 1.0},
        {"1e2", 100.0},
        {"1E+2", 100.0},
        {"0.1", 0.1},
        {"3.1415926535897932384626", 3.1415926535897932384626},
        {"5e-324", 5e-324},
        {"1e-400", 0.0},
        {"2.2250738585072011e-308", 2.2250738585072011e-308},
        {"9007199254740993.0", 9007199254740992.0},
        {"1.7976931348623157e308", std::numeric_limits<double>::max()},
        {"true", true},
        {"null", ktVariant()},
        {"\xEF\xBB\xBF[false]", List{false}},
        {"\"\"", ""},
        {"[]", List()},
        {"{ }", Map()},
        {R"({"b":1,"a":{"x":[]},"b":"last"})", Map{{"a", Map{{"x", List()}}}, {"b", "last"}}},
        {R"("\"\\\/\b\f\n\r\t")", "\"\\/\b\f\n\r\t"},
        {R"("\u0000\u0041\u00e9\u20AC\ud83d\ude00")", "\0A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"s},
        {"\"exactly14bytes\"", "exactly14bytes"},
        {"\"a text that is too long to be kept inside\"  \n", "a text that is too long to be kept inside"},
        {R"({"a key that is too long to be kept inside":"\u00e9"})",
         Map{{"a key that is too long to be kept inside", "\xC3\xA9"}}},
        {"\t[\r\n1 , 2 ]\n", List{1, 2}},
    };
    for (const AcceptedCase& text : cases) {
        ktVariant value;
        kt::ktJsonError error;
        EXPECT_TRUE(parse(text.mText, value, error)) << text.mText << ": " << error.mMessage;
        EXPECT_TRUE(value == text.mValue) << text.mText;
    }
}

struct RefusedCase {
    std::string mText;
    std::uint64_t mLine;
    std::uint64_t mColumn;
};

TEST(VariantJson, RefusesWithThePlace) {
    const RefusedCase cases[] = {
        {"", 1, 1},
        {" \n ", 2, 2},
        {"[1,\n 2,]", 2, 4},
        {"{\"a\":1,}", 1, 8},
        {"[1 2]", 1, 4},
        {"[1]]", 1, 4},
        {"[1", 1, 3},
        {"{\"a\" 1}", 1, 6},
        {"{1:2}", 1, 2},
        {"{\"a\":1]", 1, 7},
        {"01", 1, 2},
        {"+1", 1, 1},
        {".5", 1, 1},
        {"1.", 1, 3},
        {"1.e5", 1, 3},
        {"1e", 1, 3},
        {"-", 1, 2},
        {"0x10", 1, 2},
        {"1true", 1, 2},
        {"truex", 1, 5},
        {"tru", 1, 4},
        {"NaN", 1, 1},
        {"[\"\xC3\xA9\", x]", 1, 7},  // columns count characters
        {"[1e999]", 1, 2},
        {"\"\\x\"", 1, 2},
        {"\"\\u12G4\"", 1, 2},
        {"\"\\ud800\"", 1, 2},
        {"\"\\udc00\"", 1, 2},
        {"\"\\ud800\\u0041\"", 1, 2},
        {"\"a\nb\"", 1, 3},
        {"\"open", 1, 6},
        {"\"\xC0\x80\"", 1, 2},
        {"\"\xED\xA0\x80\"", 1, 2},
        {"\"\xF5\x80\x80\x80\"", 1, 2},
        {"\"ab\xE2\x82\"", 1, 4},
        {"'a'", 1, 1},
        {"[1] // end", 1, 5},
        {"[1]\0"s, 1, 4},
        {"[\"a\"\x01]", 1, 5},
    };
    for (const RefusedCase& text : cases) {
        SCOPED_TRACE(text.mText);
        ktVariant value(1);
        kt::ktJsonError error;
        EXPECT_FALSE(parse(text.mText, value, error));
        EXPECT_TRUE(value.isUndefined());
        EXPECT_FALSE(error.mMessage.empty());
        EXPECT_FALSE(error.mIsLimit);
        EXPECT_EQ(error.mLine, text.mLine) << error.mMessage;
        EXPECT_EQ(error.mColumn, text.mColumn) << error.mMessage;
    }
}

TEST(VariantJson, KeepsItsMemoryFromTextToText) {
    kt::ktJsonReader reader;
    const auto parseNext = [&reader](std::string_view text) {
        ktVariant value;
        kt::ktJsonError error;
        return reader.parse(std::as_bytes(std::span(text)), value, error) ? value : ktVariant("refused");
    };
    // Maps of the same keys in the same order, in another order, with a repeated key, and with long keys of one length.
    EXPECT_TRUE(parseNext(R"([{"b":1,"a":2},{"b":3,"a":4}])") ==
                ktVariant(List{Map{{"a", 2}, {"b", 1}}, Map{{"a", 4}, {"b", 3}}}));
    EXPECT_TRUE(parseNext(R"({"a":1,"b":)").toString() == "refused");
    EXPECT_TRUE(parseNext(R"({"a":1,"b":2})") == ktVariant(Map{{"a", 1}, {"b", 2}}));
    EXPECT_TRUE(parseNext(R"({"b":1,"b":2,"a":3})") == ktVariant(Map{{"a", 3}, {"b", 2}}));
    EXPECT_TRUE(parseNext(R"({"z a long key of 24 bytes":1,"a a long key of 24 bytes":2})") ==
                ktVariant(Map{{"a a long key of 24 bytes", 2}, {"z a long key of 24 bytes", 1}}));
    EXPECT_TRUE(parseNext(R"({"y a long key of 24 bytes":1,"x a long key of 24 bytes":2})") ==
                ktVariant(Map{{"x a long key of 24 bytes", 2}, {"y a long key of 24 bytes", 1}}));
}

TEST(VariantJson, LargeMapsKeepTheLastOfEqualKeys) {
    std::string text = "{";
    for (int index = 0; index < 500; ++index) {
        text += "\"key" + std::to_string(index * 7 % 100) + "\":" + std::to_string(index) + ",";
    }
    text.back() = '}';
    ktVariant value;
    kt::ktJsonError error;
    ASSERT_TRUE(parse(text, value, error));
    ASSERT_EQ(value.getMap()->size(), 100U);
    for (int index = 400; index < 500; ++index) {
        EXPECT_EQ(value.getMap()->at("key" + std::to_string(index * 7 % 100)).toInteger(), index);
    }
}

TEST(VariantJson, NestingEndsAtTheLimit) {
    const auto makeNested = [](std::size_t levels) { return std::string(levels, '[') + std::string(levels, ']'); };
    ktVariant value;
    kt::ktJsonError error;
    EXPECT_TRUE(parse(makeNested(1'000'000), value, error));
    EXPECT_FALSE(parse(makeNested(1'000'001), value, error));
    EXPECT_TRUE(error.mIsLimit);
    EXPECT_EQ(error.mColumn, 1'000'001U);
    EXPECT_THAT(error.mMessage, testing::HasSubstr("nested deeper"));
}

}  // namespace
