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

class JsonDamageTest : public LegacyLibraryTest {
protected:
    /// Refused with a place in the text, or made into views.
    static void expectHandled(const Bytes& text) {
        kt::ktVariant value;
        kt::ktJsonError error;
        const bool isRead = kt::ktJsonReader().parse(text, value, error);
        ASSERT_TRUE(isRead || (!error.mMessage.empty() && value.isUndefined()));
        ASSERT_TRUE(isRead || (error.mOffset <= text.size() && error.mLine >= 1 && error.mColumn >= 1));
        const LegacyDocument document = LegacyDocument::load("test", text);
        ASSERT_TRUE(isRead || document.getOutcome() == ktannot::ExitCode::Refused);
        for (const LegacyDocument::View& view : document.getViews()) {
            ASSERT_EQ(view.mIsMissing, !view.mView);
        }
    }
};

TEST_F(JsonDamageTest, TextThatEndsEarlyIsRefused) {
    for (const Bytes& whole : {toBytes(sSmallJson), readSample("symbols_v626.json")}) {
        ASSERT_TRUE(LegacyDocument::load("test", whole).isLoaded());
        const auto lastBrace =
            std::find(whole.rbegin(), whole.rend(), whole.front() == std::byte{'['} ? std::byte{']'} : std::byte{'}'});
        const std::ptrdiff_t end = whole.rend() - lastBrace;
        for (std::ptrdiff_t size = 0; size < end; ++size) {
            const Bytes cut(whole.begin(), whole.begin() + size);
            ASSERT_NO_FATAL_FAILURE(expectHandled(cut)) << size;
            ASSERT_EQ(LegacyDocument::load("test", cut).getOutcome(), ktannot::ExitCode::Refused) << size;
        }
    }
}

TEST_F(JsonDamageTest, AnyByteMayBeAnother) {
    for (const auto& [whole, step] : {std::pair(toBytes(sSmallJson), 1U), {readSample("symbols_v626.json"), 127U}}) {
        Bytes text = whole;
        for (std::size_t offset = 0; offset < text.size(); ++offset) {
            for (unsigned int change = 1; change < 256; change += step) {
                text[offset] = whole[offset] ^ static_cast<std::byte>(change);
                ASSERT_NO_FATAL_FAILURE(expectHandled(text)) << offset << " changed by " << change;
            }
            text[offset] = whole[offset];
        }
    }
}

}  // namespace
}  // namespace ktTest
