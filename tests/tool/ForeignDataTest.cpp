#include "platform/system/variant/ktVariantListImpl.h"
#include "platform/system/variant/ktVariantMapImpl.h"
#include "tools/ktannot/console/TerminalText.h"
#include "tools/ktannot/report/JsonWriter.h"

#include <gtest/gtest.h>

#include <limits>

namespace ktannot {
namespace {

using namespace std::string_literals;
using VariantMap = kt::ktVariant::ktVariantMapImpl;
using VariantList = kt::ktVariant::ktVariantListImpl;

template <typename Function>
std::string write(Function function) {
    TextOutput output;
    JsonWriter json(output);
    function(json);
    return output.getText();
}

std::string writeNumber(auto value) {
    return write([value](JsonWriter& json) { json.number(value); });
}

std::string writeVariant(const auto& value) {
    return write([&value](JsonWriter& json) { json.variant(value); });
}

TEST(ForeignData, TextsKeepTheirCharactersAndHideWhatActsOnATerminal) {
    const struct {
        std::string mText;
        std::string mJson;
        std::string mOnTerminal;
    } cases[] = {
        {"", R"("")", ""},
        {"quote \" and \\", R"("quote \" and \\")", "quote \" and \\"},
        {"a\nb\tc\r\b\f", R"("a\nb\tc\r\b\f")", R"(a\nb\tc\x0d\x08\x0c)"},
        {"\x1b]0;t\x07\x7f", R"("\u001b]0;t\u0007\u007f")", R"(\x1b]0;t\x07\x7f)"},
        {"\0end"s, R"("\u0000end")", R"(\x00end)"},
        {"\u0085\u009b1m\u202eb\u2067\u2069", R"("\u0085\u009b1m\u202eb\u2067\u2069")",
         R"(\u0085\u009b1m\u202eb\u2067\u2069)"},
        {"\u200fmark", R"("\u200fmark")", R"(\u200fmark)"},
        {"⌀35 µ 角度 зазор زاوية 📐", R"("⌀35 µ 角度 зазор زاوية 📐")", "⌀35 µ 角度 зазор زاوية 📐"},
        {"می\u200cخواهم", R"("می\u200cخواهم")", "می\u200cخواهم"},
        {"\xf3\xbf\xbf\xbf", R"("\udbbf\udfff")", R"(\U000fffff)"},
        {"caf\xe9\xc3", R"({"bytes": "636166e9c3"})", R"(caf\xe9\xc3)"},
        {"\xed\xa0\x80", R"({"bytes": "eda080"})", R"(\xed\xa0\x80)"},
        {"\xc0\x80", R"({"bytes": "c080"})", R"(\xc0\x80)"},
    };
    for (const auto& [text, json, onTerminal] : cases) {
        EXPECT_EQ(write([&value = text](JsonWriter& writer) { writer.text(value); }), json);
        EXPECT_EQ(makeTerminalText(text), onTerminal);
    }
    EXPECT_EQ(makeTerminalText("角度角度", 4), "角度角度");
    EXPECT_EQ(makeTerminalText("角度角度", 3), "角度角…");
    EXPECT_EQ(makeTerminalText("\x1b\x1b\x1b", 2), "\\x1b\\x1b…");
}

TEST(ForeignData, NumbersAreTheShortestThatReadBack) {
    using Float = std::numeric_limits<float>;
    EXPECT_EQ(writeNumber(-0.0F), "-0.0");
    EXPECT_EQ(writeNumber(1.0F / 3), "0.33333334");
    EXPECT_EQ(writeNumber(Float::denorm_min()), "1e-45");
    EXPECT_EQ(writeNumber(-Float::infinity()), "\"-Infinity\"");
    EXPECT_EQ(writeNumber(Float::quiet_NaN()), "\"NaN\"");
    EXPECT_EQ(writeNumber(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
}

TEST(ForeignData, VariantsKeepKindsAndOrderAndNeedNoStack) {
    const VariantMap map{{"b\xe9", 7}, {"a", VariantList{true, kt::ktVariant(), 0.5, "x"}}, {"c", VariantMap()}};
    EXPECT_EQ(writeVariant(map), R"({"a": [true, null, 0.5, "x"], "bytes:62e9": 7, "c": {}})");
    EXPECT_EQ(writeVariant(kt::ktVariant(VariantList{VariantList(), 1})), "[[], 1]");

    constexpr std::size_t sDepth = 300'000;
    kt::ktVariant value;
    for (std::size_t level = 0; level < sDepth; ++level) {
        VariantList list;
        list.push_back(std::move(value));
        value = kt::ktVariant(std::move(list));
    }
    const kt::ktVariant copy(value);
    EXPECT_TRUE(copy == value);
    EXPECT_EQ(writeVariant(value), std::string(sDepth, '[') + "null" + std::string(sDepth, ']'));
}

}  // namespace
}  // namespace ktannot
