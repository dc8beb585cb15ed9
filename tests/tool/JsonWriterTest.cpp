#include "platform/system/ktVariantListImpl.h"
#include "platform/system/ktVariantMapImpl.h"
#include "tools/ktannot/JsonWriter.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

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

TEST(JsonWriter, TextsKeepTheirCharactersAndHideControls) {
    const struct {
        std::string mText;
        std::string mJson;
    } cases[] = {
        {"", R"("")"},
        {"plain", R"("plain")"},
        {"quote \" and \\", R"("quote \" and \\")"},
        {"line\nfeed\ttab\r\b\f", R"("line\nfeed\ttab\r\b\f")"},
        {"\x1b[31m\x7f"s, R"("\u001b[31m\u007f")"},
        {"\0end"s, R"("\u0000end")"},
        {"\u0085\u202e\u2067", R"("\u0085\u202e\u2067")"},
        {"⌀35 µ 角度 📐", "\"⌀35 µ 角度 📐\""},
        {"\xf3\xbf\xbf\xbf", R"("\udbbf\udfff")"},  // U+FFFFF
        {"caf\xe9", R"({"bytes": "636166e9"})"},
        {"\xed\xa0\x80", R"({"bytes": "eda080"})"},
        {"\xc0\x80", R"({"bytes": "c080"})"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(write([&](JsonWriter& json) { json.text(test.mText); }), test.mJson);
    }
}

TEST(JsonWriter, NumbersAreTheShortestThatReadBack) {
    const float infinity = std::numeric_limits<float>::infinity();
    const struct {
        float mNumber;
        const char* mJson;
    } cases[] = {
        {0.0F, "0"},
        {-0.0F, "-0"},
        {0.1F, "0.1"},
        {6.0F, "6"},
        {1e22F, "1e+22"},
        {1e-7F, "1e-07"},
        {16777216.0F, "16777216"},
        {1.0F / 3, "0.33333334"},
        {3.4028235e38F, "3.4028235e+38"},
        {1e-45F, "1e-45"},
        {infinity, "\"Infinity\""},
        {-infinity, "\"-Infinity\""},
        {std::numeric_limits<float>::quiet_NaN(), "\"NaN\""},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(write([&](JsonWriter& json) { json.number(test.mNumber); }), test.mJson);
    }
    EXPECT_EQ(write([](JsonWriter& json) { json.number(0.1); }), "0.1");
    EXPECT_EQ(write([](JsonWriter& json) { json.number(static_cast<double>(0.1F)); }), "0.10000000149011612");
    EXPECT_EQ(write([](JsonWriter& json) { json.number(std::numeric_limits<std::int64_t>::min()); }),
              "-9223372036854775808");
    EXPECT_EQ(write([](JsonWriter& json) { json.number(std::numeric_limits<std::uint64_t>::max()); }),
              "18446744073709551615");
    EXPECT_EQ(write([](JsonWriter& json) { json.number(static_cast<unsigned char>(255)); }), "255");
}

TEST(JsonWriter, ContainersSeparateTheirValues) {
    const std::string text = write([](JsonWriter& json) {
        for (int line = 0; line < 2; ++line) {
            json.beginObject();
            json.key("empty").beginArray();
            json.endArray();
            json.key("caf\xe9").null();
            json.key("list").beginArray();
            json.vector(Wm4::Vector3<float>(1, 2.5F, -3));
            json.beginObject();
            json.endObject();
            json.boolean(true);
            json.endArray();
            json.endObject();
            json.endLine();
        }
    });
    const std::string line = R"({"empty": [], "bytes:636166e9": null, "list": [[1, 2.5, -3], {}, true]})"
                             "\n";
    EXPECT_EQ(text, line + line);
}

TEST(JsonWriter, VariantsKeepKindsAndOrder) {
    const VariantMap map{{"b", 7}, {"a", VariantList{true, kt::ktVariant(), 0.5, "x"}}, {"c", VariantMap()}};
    EXPECT_EQ(write([&](JsonWriter& json) { json.variant(map); }), R"({"a": [true, null, 0.5, "x"], "b": 7, "c": {}})");
    EXPECT_EQ(write([&](JsonWriter& json) { json.variant(kt::ktVariant(VariantList{VariantList(), 1})); }), "[[], 1]");
}

TEST(JsonWriter, VariantsOfAnyDepthNeedNoStack) {
    constexpr std::size_t sDepth = 300'000;
    kt::ktVariant value;
    for (std::size_t level = 0; level < sDepth; ++level) {
        VariantList list;
        list.push_back(std::move(value));
        value = kt::ktVariant(std::move(list));
    }
    const std::string text = write([&](JsonWriter& json) { json.variant(value); });
    EXPECT_EQ(text, std::string(sDepth, '[') + "null" + std::string(sDepth, ']'));
}

}  // namespace
}  // namespace ktannot
