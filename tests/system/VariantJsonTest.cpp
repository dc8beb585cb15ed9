#include "platform/system/json/ktVariantJson.h"
#include "platform/system/variant/ktVariantListImpl.h"
#include "platform/system/variant/ktVariantMapImpl.h"

#include <gmock/gmock.h>

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

TEST(VariantJson, Accepts) {
    const std::pair<std::string, ktVariant> rows[] = {
        {"42", 42},
        {" -0 ", 0},
        {"-0.0", -0.0},
        {"1.0", 1.0},
        {"1e2", 100.0},
        {"1E+2", 100.0},
        {"0.1", 0.1},
        {"true", true},
        {"null", ktVariant()},
        {"\"\"", ""},
        {"[]", List()},
        {"{ }", Map()},
        {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
        {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
        {"9223372036854775808", 9223372036854775808.0},
        {"123456789012345678901234567890", 123456789012345678901234567890.0},
        {"3.1415926535897932384626", 3.1415926535897932384626},
        {"5e-324", 5e-324},
        {"1e-400", 0.0},
        {"2.2250738585072011e-308", 2.2250738585072011e-308},
        {"9007199254740993.0", 9007199254740992.0},
        {"1.7976931348623157e308", std::numeric_limits<double>::max()},
        {"\xEF\xBB\xBF[false]", List{false}},
        {"\t[\r\n1 , 2 ]\n", List{1, 2}},
        {R"({"b":1,"a":{"x":[]},"b":"last"})", Map{{"a", Map{{"x", List()}}}, {"b", "last"}}},
        {R"("\"\\\/\b\f\n\r\t")", "\"\\/\b\f\n\r\t"},
        {R"("\u0000\u0041\u00e9\u20AC\ud83d\ude00")", "\0A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"s},
        {"\"exactly14bytes\"", "exactly14bytes"},
        {"\"a text that is too long to be kept inside\"  \n", "a text that is too long to be kept inside"},
        {R"({"a key that is too long to be kept inside":"\u00e9"})",
         Map{{"a key that is too long to be kept inside", "\xC3\xA9"}}}};
    for (const auto& [text, expected] : rows) {
        ktVariant value;
        kt::ktJsonError error;
        EXPECT_TRUE(parse(text, value, error)) << text << ": " << error.mMessage;
        EXPECT_TRUE(value == expected) << text;
    }
}

TEST(VariantJson, RefusesWithThePlace) {
    const struct {
        std::uint64_t mLine;
        std::uint64_t mColumn;
        std::vector<std::string> mTexts;
    } rows[] = {
        {1, 1, {"", "+1", ".5", "NaN", "'a'"}},
        {1, 2, {"{1:2}", "01", "-", "0x10", "1true", "\"\\x\"", "\"\\u12G4\"", "\"\\ud800\"", "\"\\udc00\""}},
        {1, 2, {"\"\\ud800\\u0041\"", "\"\xC0\x80\"", "\"\xED\xA0\x80\"", "\"\xF5\x80\x80\x80\""}},
        {1, 3, {"[1", "1.", "1.e5", "1e", "\"a\nb\""}},
        {1, 4, {"[1 2]", "[1]]", "tru", "\"ab\xE2\x82\"", "[1]\0"s}},
        {1, 5, {"truex", "[1] // end", "[\"a\"\x01]"}},
        {1, 6, {"{\"a\" 1}", "\"open"}},
        {1, 7, {"{\"a\":1]", "[\"\xC3\xA9\", x]"}},  // columns count characters
        {1, 8, {"{\"a\":1,}"}},
        {2, 2, {" \n "}},
        {2, 4, {"[1,\n 2,]"}},
    };
    for (const auto& [line, column, texts] : rows) {
        for (const std::string& text : texts) {
            SCOPED_TRACE(text);
            ktVariant value(1);
            kt::ktJsonError error;
            EXPECT_FALSE(parse(text, value, error));
            EXPECT_TRUE(value.isUndefined());
            EXPECT_FALSE(error.mMessage.empty());
            EXPECT_FALSE(error.mIsLimit);
            EXPECT_EQ(std::pair(error.mLine, error.mColumn), std::pair(line, column)) << error.mMessage;
        }
    }
}

/// What a list of the text twice gives, with so much behind it that short numbers are read in wide steps.
ktVariant parseWithTextBehind(const std::string& text) {
    ktVariant value;
    kt::ktJsonError error;
    const std::string blanks(64, ' ');
    return parse("[" + text + "," + text + blanks + "]" + blanks, value, error) ? value : ktVariant();
}

TEST(VariantJson, ReadsNumbersOfAnyLength) {
    const std::string digits = "9876543210123456789012";
    for (const std::string sign : {"", "-"}) {
        for (std::size_t whole = 1; whole <= 18; ++whole) {
            const std::string integer = sign + digits.substr(0, whole);
            EXPECT_EQ(parseWithTextBehind(integer), (List{std::stoll(integer), std::stoll(integer)})) << integer;
            for (std::size_t fraction = 1; fraction <= digits.size(); ++fraction) {
                for (const std::string& text : {integer + "." + digits.substr(digits.size() - fraction),
                                                sign + "0." + std::string(whole, '0') + digits.substr(0, fraction)}) {
                    const double number = std::stod(text);
                    EXPECT_EQ(parseWithTextBehind(text), (List{number, number})) << text;
                }
            }
        }
    }
}

TEST(VariantJson, RefusesWrongNumbersWithTextBehind) {
    for (const char* text : {"00", "01", "-", "-a", "-01", ".5", "1.", "1.a", "1.-5", "1.5.2", "1.5x", "1x", "1:", "1;",
                             "123456789x", "0.12345678a", "0.1234567812345678x", "1.5e", "1\xB1"}) {
        EXPECT_EQ(parseWithTextBehind(text), ktVariant()) << text;
    }
}

TEST(VariantJson, KeepsItsMemoryFromTextToText) {
    // Maps of the same keys in the same order, in another order, with a repeated key, and with long keys of one length.
    const std::pair<std::string_view, ktVariant> rows[] = {
        {R"([{"b":1,"a":2},{"b":3,"a":4}])", List{Map{{"a", 2}, {"b", 1}}, Map{{"a", 4}, {"b", 3}}}},
        {R"({"a":1,"b":)", "refused"},
        {R"({"a":1,"b":2})", Map{{"a", 1}, {"b", 2}}},
        {R"({"b":1,"b":2,"a":3})", Map{{"a", 3}, {"b", 2}}},
        {R"({"z a long key of 24 bytes":1,"a a long key of 24 bytes":2})",
         Map{{"a a long key of 24 bytes", 2}, {"z a long key of 24 bytes", 1}}},
        {R"({"y a long key of 24 bytes":1,"x a long key of 24 bytes":2})",
         Map{{"x a long key of 24 bytes", 2}, {"y a long key of 24 bytes", 1}}},
    };
    kt::ktJsonReader reader;
    for (const auto& [text, expected] : rows) {
        ktVariant value;
        kt::ktJsonError error;
        EXPECT_TRUE((reader.parse(std::as_bytes(std::span(text)), value, error) ? value : "refused") == expected)
            << text;
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
