#include "tools/ktannot/TerminalText.h"

#include <gtest/gtest.h>

#include <string>

namespace ktannot {
namespace {

using namespace std::string_literals;

TEST(TerminalText, HidesWhatActsOnATerminal) {
    const struct {
        std::string mText;
        std::string mShown;
    } cases[] = {
        {"plain text", "plain text"},
        {"two\nlines\tand tab", "two\\nlines\\tand tab"},
        {"\x1b]0;title\x07"s, "\\x1b]0;title\\x07"},
        {"\0"s, "\\x00"},
        {"\x7f", "\\x7f"},
        {"\u009b1m", "\\u009b1m"},
        {"a\u202eb\u2066c\u2069", "a\\u202eb\\u2066c\\u2069"},
        {"\u200fmark", "\\u200fmark"},
        {"\xff\xc3", "\\xff\\xc3"},
        {"角度 зазор زاوية 📐", "角度 зазор زاوية 📐"},
        {"می\u200cخواهم", "می\u200cخواهم"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(makeTerminalText(test.mText), test.mShown);
    }
}

TEST(TerminalText, CutsAtCharacters) {
    EXPECT_EQ(makeTerminalText("角度角度", 4), "角度角度");
    EXPECT_EQ(makeTerminalText("角度角度", 3), "角度角…");
    EXPECT_EQ(makeTerminalText("\x1b\x1b\x1b", 2), "\\x1b\\x1b…");
    EXPECT_EQ(makeTerminalText("", 0), "");
}

}  // namespace
}  // namespace ktannot
