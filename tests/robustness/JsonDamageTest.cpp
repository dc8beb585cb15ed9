#include "platform/system/ktVariantJson.h"
#include "tests/legacy/LegacyLibraryTest.h"
#include "tests/robustness/DamagedDocuments.h"
#include "tools/ktannot/LegacyDocument.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

namespace ktTest {
namespace {

using ktannot::LegacyDocument;

/// Every kind of value, an escape, a character of several bytes and a line break.
constexpr std::string_view sSmallJson =
    "[{\"ver\": \"6.27\", \"name\": \"\\u00e9\xE2\x8C\x80\", \"origin\": [1, -2.5e1, 0], \"metadata\": {\"a\": null},\n"
    "\"annotations\": [{\"type\": \"text\", \"position\": [0, 1, 2], \"leaders\": [{\"pos\": [1, 2, 3], \"head\": "
    "\"arrow\"}],\n\"isframelocked\": true, \"lines\": [[{\"text\": \"x\"}]], \"children\": [{\"type\": \"raster\", "
    "\"rastername\": \"r\", \"sizeem\": [1, 2], \"rb\": false}]}]}]";

Bytes toBytes(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

/// Why the place that an error names is not one of the text; empty when it is.
std::string findWrongPlace(const Bytes& text, const kt::ktJsonError& error) {
    if (error.mMessage.empty()) {
        return "no message";
    }
    if (error.mOffset > text.size()) {
        return "offset " + std::to_string(error.mOffset) + " beyond the text";
    }
    std::uint64_t line = 1;
    std::uint64_t column = 1;
    for (std::size_t index = 0; index < error.mOffset; ++index) {
        const auto byte = static_cast<unsigned char>(text[index]);
        if (byte == '\n') {
            ++line;
            column = 1;
        } else if ((byte & 0xC0U) != 0x80U) {
            ++column;
        }
    }
    // Within a character that is not whole, or in bytes that are none, columns are the reader's choice.
    const bool isAscii = std::all_of(text.begin(), text.end(), [](std::byte byte) { return byte < std::byte{0x80}; });
    if (error.mLine != line || error.mColumn == 0 || (isAscii && error.mColumn != column)) {
        return "line " + std::to_string(error.mLine) + ", column " + std::to_string(error.mColumn) + " instead of " +
               std::to_string(line) + ", " + std::to_string(column);
    }
    return {};
}

class JsonDamageTest : public LegacyLibraryTest {
protected:
    /// Refused with a place, or not at all.
    static void expectHandled(const Bytes& text) {
        kt::ktVariant value;
        kt::ktJsonError error;
        if (!kt::ktJsonReader().parse(text, value, error)) {
            ASSERT_EQ(findWrongPlace(text, error), "");
        }
        const LegacyDocument document = LegacyDocument::load("test", text);
        if (document.isLoaded()) {
            for (const LegacyDocument::View& view : document.getViews()) {
                ASSERT_EQ(view.mIsMissing, !view.mView);
            }
        }
    }
};

TEST_F(JsonDamageTest, TextThatEndsEarlyIsRefusedWithItsPlace) {
    for (const Bytes& whole : {toBytes(sSmallJson), readSample("symbols_v626.json")}) {
        ASSERT_TRUE(LegacyDocument::load("test", whole).isLoaded());
        std::size_t end = whole.size();
        while (whole[end - 1] <= std::byte{' '}) {
            --end;
        }
        for (std::size_t size = 0; size < end; ++size) {
            const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
            kt::ktVariant value;
            kt::ktJsonError error;
            ASSERT_FALSE(kt::ktJsonReader().parse(cut, value, error)) << size;
            ASSERT_EQ(findWrongPlace(cut, error), "") << size;
            ASSERT_TRUE(value.isUndefined()) << size;
            const LegacyDocument document = LegacyDocument::load("test", cut);
            ASSERT_EQ(document.getOutcome(), ktannot::ExitCode::Refused) << size;
            const std::string place =
                "line " + std::to_string(error.mLine) + ", column " + std::to_string(error.mColumn);
            ASSERT_TRUE(size == 0 || document.getReason().find(place) != std::string::npos) << document.getReason();
        }
    }
}

TEST_F(JsonDamageTest, AnyByteMayBeAnother) {
    Bytes text = toBytes(sSmallJson);
    for (std::byte& byte : text) {
        const std::byte original = byte;
        for (unsigned int change = 1; change < 256; ++change) {
            byte = original ^ static_cast<std::byte>(change);
            ASSERT_NO_FATAL_FAILURE(expectHandled(text)) << &byte - text.data() << " changed by " << change;
        }
        byte = original;
    }
}

TEST_F(JsonDamageTest, AnyByteOfASampleMayBeAnother) {
    Bytes text = readSample("symbols_v626.json");
    for (std::byte& byte : text) {
        const std::byte original = byte;
        for (const unsigned int change : {1U, 0x80U}) {
            byte = original ^ static_cast<std::byte>(change);
            ASSERT_NO_FATAL_FAILURE(expectHandled(text)) << &byte - text.data() << " changed by " << change;
        }
        byte = original;
    }
}

}  // namespace
}  // namespace ktTest
