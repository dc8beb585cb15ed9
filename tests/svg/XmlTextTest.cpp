#include "platform/svg/TextBuffer_p.h"
#include "platform/svg/XmlText_p.h"
#include "tests/svg/XmlTree.h"

#include <gtest/gtest.h>

#include <random>

namespace kt::svg {
namespace {

using namespace std::string_literals;

std::string escape(std::string_view text, XmlContext context) {
    std::string escaped;
    TextBuffer buffer(escaped);
    appendXmlText(buffer, text, context);
    buffer.flush();
    return escaped;
}

const std::string sReplacement = "\xEF\xBF\xBD";

TEST(XmlText, IsReadBackByAStrictParser) {
    const struct {
        std::string mText;
        std::string mRead;
    } rows[] = {
        {"plain text of some length", "plain text of some length"},
        {"<&>\"' ]]> <!-- -->", "<&>\"' ]]> <!-- -->"},
        {"tab\tline\nreturn\r\n.", "tab\tline\nreturn\r\n."},
        {"a\0b\x01\x08\x0B\x0C\x0E\x1F"s, "a" + sReplacement + "b" + sReplacement + sReplacement + sReplacement +
                                              sReplacement + sReplacement + sReplacement},
        {"\x7F\xC2\x80 \xC3\xA9 \xE2\x8C\x80 \xF0\x9F\x98\x80", "\x7F\xC2\x80 \xC3\xA9 \xE2\x8C\x80 \xF0\x9F\x98\x80"},
        {"\xEF\xBF\xBE|\xEF\xBF\xBF|\xEF\xBF\xBD", sReplacement + "|" + sReplacement + "|" + sReplacement},
        {"\xED\x9F\xBF|\xED\xA0\x80", "\xED\x9F\xBF|" + sReplacement + sReplacement + sReplacement},  // a surrogate
        {"\xC0\x80|\xE0\x80\x80",
         sReplacement + sReplacement + "|" + sReplacement + sReplacement + sReplacement},  // overlong
        {"\xF4\x8F\xBF\xBF|\xF4\x90", "\xF4\x8F\xBF\xBF|" + sReplacement + sReplacement},  // above U+10FFFF
        {"cut \xE2\x8C", "cut " + sReplacement},
        {"cut \xE2\x8Cx", "cut " + sReplacement + "x"},
        {"\x80\xFF", sReplacement + sReplacement},
    };
    for (const auto& row : rows) {
        const auto elements = test::parseXml("<a b=\"" + escape(row.mText, XmlContext::Attribute) + "\">" +
                                             escape(row.mText, XmlContext::Content) + "</a>");
        ASSERT_TRUE(elements) << row.mText;
        EXPECT_EQ(elements->front().mText, row.mRead);
        EXPECT_EQ(elements->front().getAttribute("b"), row.mRead);
    }
}

TEST(XmlText, StaysWellFormedForRandomBytes) {
    std::mt19937 random(11);
    // Bytes that mean something are drawn more often than others.
    const std::string special = "<>&\"'\r\n\t]\xC3\xE2\xED\xEF\xF0\xF4\x80\xBF\xBE";
    for (int round = 0; round < 3000; ++round) {
        std::string text(random() % 60, ' ');
        for (char& byte : text) {
            byte = random() % 2 == 0 ? special[random() % special.size()] : static_cast<char>(random() % 256);
        }
        ASSERT_TRUE(test::parseXml("<a b=\"" + escape(text, XmlContext::Attribute) + "\">" +
                                   escape(text, XmlContext::Content) + "</a>"))
            << testing::PrintToString(text);
    }
}

TEST(XmlText, IsCutBetweenCharacters) {
    EXPECT_EQ(cutUtf8("abc", 5), "abc");
    EXPECT_EQ(cutUtf8("abc", 2), "ab");
    EXPECT_EQ(cutUtf8("a\xE2\x8C\x80", 3), "a");
    EXPECT_EQ(cutUtf8("a\xE2\x8C\x80", 4), "a\xE2\x8C\x80");
    EXPECT_EQ(cutUtf8("\x80\x80\x80\x80\x80\x80", 5).size(), 5U);
}

}  // namespace
}  // namespace kt::svg
